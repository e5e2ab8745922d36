#include "Kestrio/Reports/ItemTally.h"

#include <algorithm>

namespace kestrio {

void ItemTally::add(const Key& key, const ClassifiedSession& session) {
    const auto [number, isNew] =
        numbers_.number({key.owner, static_cast<std::uint32_t>(key.group), static_cast<std::uint32_t>(key.text)});
    if (isNew)
        rows_.emplace_back().key = key;
    auto& row = rows_[number];
    ++row.count;
    row.duration += session.duration();
    if (!isNew && session.end < row.lastSeen)
        return;
    row.lastSeen = session.end;
    row.latest = &session;
    if (session.url)
        row.latestWithURL = &session;
    if (session.domain)
        row.latestWithDomain = &session;
}

std::vector<std::vector<const ItemTally::Row*>> ItemTally::longest(std::size_t owners, std::size_t limit,
                                                                   const TextNumbers& texts) const {
    std::vector<std::size_t> counts(owners);
    for (const auto& row : rows_)
        ++counts[row.key.owner];
    std::vector<std::vector<const Row*>> lists(owners);
    for (std::size_t owner = 0; owner < owners; ++owner)
        lists[owner].reserve(counts[owner]);
    for (const auto& row : rows_)
        lists[row.key.owner].push_back(&row);

    const auto comesFirst = [&](const Row* a, const Row* b) {
        if (a->duration != b->duration)
            return a->duration > b->duration;
        if (a->key.group != b->key.group)
            return texts.text(a->key.group) < texts.text(b->key.group);
        return texts.text(a->key.text) < texts.text(b->key.text);
    };
    for (auto& list : lists) {
        const auto shown = static_cast<std::ptrdiff_t>(std::min(limit, list.size()));
        std::partial_sort(list.begin(), list.begin() + shown, list.end(), comesFirst);
        list.resize(static_cast<std::size_t>(shown));
    }
    return lists;
}

UsageItem usageItem(const ItemTally::Row& row, const TextNumbers& texts) {
    UsageItem item;
    if (row.key.group != TextNumber::absent) {
        item.id = texts.text(row.key.group);
        item.id += '|';
    }
    item.id += texts.text(row.key.text);
    item.duration = row.duration;
    item.count = row.count;
    item.lastSeen = row.lastSeen;
    return item;
}

} // namespace kestrio
