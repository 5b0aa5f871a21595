#include "playback/split_name.h"

namespace marvolen {

std::string SplitName(std::string_view baseName, std::uint32_t sequence) {
    const std::size_t nameStart = baseName.find_last_of("\\/") + 1;  // npos + 1 is 0
    const std::string_view file = baseName.substr(nameStart);
    const std::size_t dot = file.rfind('.');
    const std::string_view extension =
        dot == std::string_view::npos ? std::string_view() : file.substr(dot + 1);

    std::string name(baseName.substr(0, nameStart));
    name += file.substr(0, dot);
    name += sequence < 10 ? "-0" : "-";
    name += std::to_string(sequence);
    name += '.';
    return name += extension;
}

}  // namespace marvolen
