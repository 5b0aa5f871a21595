// Machine-property text: what is read, what isn't, and that the writer's text reads back.

#include "settings/machine_property.h"

#include <gtest/gtest.h>

namespace marvolen::test {
namespace {

const std::string kEnd = "==========\r\n";

// A line for every block read, of its fields in their order, then "!" if one failed, then what is
// left of the text.
std::string Read(std::string_view text) {
    std::string result;
    while (!IsMachinePropertyEnd(text)) {
        MachineProperty p;
        p.Model = "of before";
        if (!TranslateBlock(p, text)) return result + "!" + std::string(text);
        for (const std::string& field : {p.Model, p.MacAddress, p.IPAddress, p.SubnetMask,
                                         p.Gateway, p.DNS1, p.DNS2, p.DNS3, p.Port}) {
            result += field + ",";
        }
        result += "\n";
    }
    return result;
}

TEST(MachineProperty, ReadsBlocksLineByLine) {
    const std::string empty = ",,,,,,,,,\n";
    const std::string all =
        "DNS3:3\r\nPort: 80\r\nModel:a:b\r\nMacAddress:m\r\nIPAddress:i\r\nIPAddress:j\r\n"
        "Gateway:g\r\nSubnetMask:s\r\nDNS1:1\r\nDNS2:2\r\n";
    for (const auto& [text, blocks] : std::vector<std::pair<std::string, std::string>>{
             {"", ""},
             {std::string("\0Port:1\r\n", 9), ""},
             {kEnd, empty},
             {all + kEnd + kEnd, "a:b,m,j,s,g,1,2,3, 80,\n" + empty},
             {"DNS1:\n\r\n" + kEnd, ",,,,,\n,,,,\n"},
             {kEnd + "\r\n", empty + "!"},
             {"Port:1\r\n==========", "!=========="},
             {"ipaddress:1\r\n" + kEnd, "!" + kEnd},
             {"Port\r\n" + kEnd, "!" + kEnd},
             {":1\r\n" + kEnd, "!" + kEnd},
             {" ==========\r\n" + kEnd, "!" + kEnd},
         }) {
        EXPECT_EQ(Read(text), blocks) << text.substr(0, 100);
    }
}

TEST(MachineProperty, WritesWhatItReads) {
    MachineProperty property;
    EXPECT_EQ(FormatBlock(property), kEnd);
    std::string text =
        "Model:a:b\r\nMacAddress:m\r\nIPAddress:i\r\nPort: 1\r\nGateway:g\r\nSubnetMask:s\r\n"
        "DNS1:1\r\nDNS2:2\r\nDNS3:3\r\n" +
        kEnd;
    std::string_view rest = text;
    ASSERT_TRUE(TranslateBlock(property, rest));
    EXPECT_EQ(FormatBlock(property), text);
}

}  // namespace
}  // namespace marvolen::test
