#include "Kestrio/Views/Design/ListPortion.h"

#include <algorithm>

namespace kestrio {

void ListPortion::setCount(int count) {
    count = std::max(count, 0);
    if (count_ == count)
        return;
    count_ = count;
    Q_EMIT changed();
}

void ListPortion::setInitialCount(int count) {
    count = std::max(count, 0);
    if (initialCount_ == count)
        return;
    initialCount_ = count;
    list_ = ExpandableList(static_cast<std::size_t>(count));
    Q_EMIT changed();
}

QString ListPortion::moreTitle() const {
    return QString::fromStdString(list_.moreTitle(static_cast<std::size_t>(count_)).value_or(std::string()));
}

void ListPortion::showMore() {
    list_.showMore(static_cast<std::size_t>(count_));
    Q_EMIT changed();
}

} // namespace kestrio
