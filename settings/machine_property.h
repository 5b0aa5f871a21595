#pragma once

// Machine-property text: network properties of video servers, a block each, as the clipboard holds
// them (docs/machine_property.md). Reader and writer; no toolkit, no clipboard.

#include <string>
#include <string_view>

namespace marvolen {

// What a text begins with: the keyword line, and one of ten "=".
inline constexpr std::string_view kMachinePropertyHeader = "DVR_MACHINE_PROPERTY\r\n==========\r\n";
static_assert(kMachinePropertyHeader.size() == 34);

// The line that ends a block, without its line end.
inline constexpr std::string_view kMachinePropertySeparator = "==========";

// The properties of one video server. Bytes are kept as they stand in the text, blanks included.
class MachineProperty {
public:
    virtual ~MachineProperty() = default;

    std::string Model;
    std::string MacAddress;
    std::string IPAddress;
    std::string SubnetMask;
    std::string Gateway;
    std::string DNS1;
    std::string DNS2;
    std::string DNS3;
    std::string Port;

    void Clear() { *this = MachineProperty(); }

    friend bool operator==(const MachineProperty&, const MachineProperty&) = default;
};

// Whether text, what is left behind the last block, holds no other: it is empty or begins with NUL.
bool IsMachinePropertyEnd(std::string_view text);

// Reads one block from the front of text, which then begins behind it. False at a line whose key,
// the bytes before its first ":", is none of the nine properties' names, and at the end of a text
// whose last block lacks its separator line; property then holds what came before.
bool TranslateBlock(MachineProperty& property, std::string_view& text);

// The block of the properties that aren't empty, in the format's order. Values hold no line ends.
std::string FormatBlock(const MachineProperty& property);

}  // namespace marvolen
