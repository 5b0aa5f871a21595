#pragma once

// Views and their pages: how many panes a view shows at once, which page it begins with, and where
// paging ends.

#include <string>

namespace marvolen {

// How many panes are seen at once.
enum class ViewMode { None = 0, One = 1, Four = 4, Sixteen = 16 };

struct Paging {
    int pageCount = 1;
    int currentPage = 1;  // 1-based

    // Brings currentPage into 1..pageCount.
    void Clamp();

    // Whether "P" and "N" lead anywhere.
    bool HasPrevious() const { return currentPage > 1; }
    bool HasNext() const { return currentPage < pageCount; }

    // "3/4".
    std::string Text() const;

    bool operator==(const Paging&) const = default;
};

// The pages of a view that is chosen while this channel (0..15) is selected: the view begins with
// the page that shows it.
Paging PagingOf(ViewMode view, int currentChannel);

}  // namespace marvolen
