#include "app/paging.h"

#include <algorithm>

namespace marvolen {

void Paging::Clamp() {
    currentPage = std::clamp(currentPage, 1, std::max(pageCount, 1));
}

std::string Paging::Text() const {
    return std::to_string(currentPage) + "/" + std::to_string(pageCount);
}

Paging PagingOf(ViewMode view, int currentChannel) {
    switch (view) {
        case ViewMode::One:
            return {16, currentChannel + 1};
        case ViewMode::Four:
            return {4, currentChannel / 4 + 1};
        case ViewMode::Sixteen:
        case ViewMode::None:
            break;
    }
    return {1, 1};
}

}  // namespace marvolen
