#include "settings/machine_property.h"

#include <algorithm>
#include <iterator>

namespace marvolen {
namespace {

constexpr std::string_view kLineEnd = "\r\n";

struct Property {
    std::string_view key;
    std::string MachineProperty::*value;
};

// In the order of the written text.
constexpr Property kProperties[] = {
    {"Model", &MachineProperty::Model},         {"MacAddress", &MachineProperty::MacAddress},
    {"IPAddress", &MachineProperty::IPAddress}, {"Port", &MachineProperty::Port},
    {"Gateway", &MachineProperty::Gateway},     {"SubnetMask", &MachineProperty::SubnetMask},
    {"DNS1", &MachineProperty::DNS1},           {"DNS2", &MachineProperty::DNS2},
    {"DNS3", &MachineProperty::DNS3},
};

// The first line of text, which then begins behind it. A text without a line end has an empty line
// and stays as it is.
std::string_view ReadLine(std::string_view& text) {
    const std::size_t end = text.find(kLineEnd);
    if (end == std::string_view::npos) return {};
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end + kLineEnd.size());
    return line;
}

}  // namespace

bool IsMachinePropertyEnd(std::string_view text) {
    return text.empty() || text.front() == '\0';
}

bool TranslateBlock(MachineProperty& property, std::string_view& text) {
    property.Clear();
    for (;;) {
        const std::string_view line = ReadLine(text);
        if (line == kMachinePropertySeparator) return true;
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos) return false;
        const auto* const known =
            std::ranges::find(kProperties, line.substr(0, colon), &Property::key);
        if (known == std::end(kProperties)) return false;
        property.*known->value = line.substr(colon + 1);
    }
}

std::string FormatBlock(const MachineProperty& property) {
    std::string text;
    for (const auto& [key, value] : kProperties) {
        if ((property.*value).empty()) continue;
        text.append(key).append(":").append(property.*value).append(kLineEnd);
    }
    return text.append(kMachinePropertySeparator).append(kLineEnd);
}

}  // namespace marvolen
