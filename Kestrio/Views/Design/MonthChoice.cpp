#include "Kestrio/Views/Design/MonthChoice.h"

#include <QtCore/QVariantList>
#include <algorithm>

namespace kestrio {
namespace {

QVariantMap dayMap(const MonthGrid::Day& day) {
    return {{"label", QString::fromStdString(day.label)},
            {"fullName", QString::fromStdString(day.fullName)},
            {"isInMonth", day.isInMonth},
            {"isToday", day.isToday},
            {"isSelected", day.isSelected},
            {"isEnabled", day.isEnabled}};
}

} // namespace

void MonthChoice::setDate(double date) {
    date_ = date;
    shown_ = date;
    Q_EMIT changed();
}

void MonthChoice::setNow(double now) {
    if (now_ == now)
        return;
    now_ = now;
    Q_EMIT changed();
}

MonthGrid MonthChoice::grid() const {
    return monthGrid(Date(shown_), Date(date_), Date(now_), calendar_);
}

QVariantMap MonthChoice::month() const {
    const auto shown = grid();
    QVariantList weekdays;
    for (const auto& weekday : shown.weekdays)
        weekdays.append(QString::fromStdString(weekday));
    QVariantList days;
    for (const auto& day : shown.days)
        days.append(dayMap(day));
    return {{"title", QString::fromStdString(shown.title)},
            {"weekdays", weekdays},
            {"days", days},
            {"hasNext", shown.hasNext}};
}

void MonthChoice::moveMonths(int by) {
    shown_ = calendar_.addingMonths(calendar_.month(Date(shown_)).start, by).seconds();
    Q_EMIT changed();
}

double MonthChoice::dayAt(int place) const {
    const auto days = grid().days;
    const bool isThere = place >= 0 && static_cast<std::size_t>(place) < days.size();
    return isThere ? days[static_cast<std::size_t>(place)].start.seconds() : date_;
}

double MonthChoice::dayBeside(int days) const {
    const auto beside = calendar_.addingDays(calendar_.startOfDay(Date(date_)), days);
    return std::min(beside, calendar_.startOfDay(Date(now_))).seconds();
}

} // namespace kestrio
