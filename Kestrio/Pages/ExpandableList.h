// How much of a long list shows. A value that lives with the view of its list.
#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>

namespace kestrio {

class ExpandableList {
public:
    static constexpr std::size_t portion = 100;

    explicit ExpandableList(std::size_t initialCount) : limit_(initialCount) {}

    /// How many of `count` rows show.
    std::size_t shown(std::size_t count) const { return std::min(limit_, count); }

    /// "Show {n} more", n being 100 at most. Absent when all show.
    std::optional<std::string> moreTitle(std::size_t count) const;

    /// The button was pressed below a list of so many rows.
    void showMore(std::size_t count) { limit_ = shown(count) + portion; }

private:
    std::size_t limit_;
};

} // namespace kestrio
