#include "Kestrio/Views/Charts/ChartValues.h"

#include "Kestrio/Views/Charts/ChartPalette.h"

namespace kestrio {
namespace {

QString shown(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString name(SystemColor color) {
    switch (color) {
    case SystemColor::blue: return QStringLiteral("blue");
    case SystemColor::teal: return QStringLiteral("teal");
    case SystemColor::purple: return QStringLiteral("purple");
    case SystemColor::orange: return QStringLiteral("orange");
    case SystemColor::red: return QStringLiteral("red");
    case SystemColor::brown: return QStringLiteral("brown");
    case SystemColor::gray: return QStringLiteral("gray");
    }
    return {};
}

QVariantList toList(const std::vector<CategoryPill>& pills) {
    QVariantList list;
    for (const auto& pill : pills)
        list.append(toMap(pill));
    return list;
}

} // namespace

QString ActivityChartValue::words() const {
    return data_ ? shown(data_->chart.words) : QString();
}

QVariantList ActivityChartValue::legend() const {
    return data_ ? toList(data_->chart.legend) : QVariantList();
}

QString UsageTrendValue::words() const {
    return trend_ ? shown(trend_->words) : QString();
}

QString CategoryStackBarValue::words() const {
    return bar_ ? shown(bar_->words) : QString();
}

QString DayStripsValue::explanation() const {
    return data_ ? shown(data_->strips.explanation) : QString();
}

QString DayStripsValue::words() const {
    return data_ ? shown(data_->strips.words) : QString();
}

int DayStripsValue::dayCount() const {
    return data_ ? static_cast<int>(data_->strips.days.size()) : 0;
}

QVariantList DayStripsValue::hourAxis() const {
    QVariantList list;
    if (!data_)
        return list;
    const auto& [lowest, highest] = data_->strips.hours;
    for (const auto& mark : data_->strips.hourAxis)
        list.append(QVariantMap{{"label", shown(mark.label)},
                                {"fraction", static_cast<qreal>(mark.hour - lowest) / (highest - lowest)}});
    return list;
}

QVariantList DayStripsValue::legend() const {
    return data_ ? toList(data_->strips.legend) : QVariantList();
}

QVariantMap DayStripsValue::dayLabel(int day) const {
    if (day < 0 || day >= dayCount())
        return {};
    const auto label = kestrio::dayLabel(data_->strips.days[static_cast<std::size_t>(day)], isDense(), data_->calendar);
    QVariantMap map{{"title", shown(label.title)}};
    if (label.detail)
        map.insert("detail", shown(*label.detail));
    if (label.help)
        map.insert("help", shown(*label.help));
    return map;
}

ActivityChartValue activityChartValue(SharedReport report, const Calendar& calendar) {
    auto chart = activityChart(*report, calendar);
    return ActivityChartValue(
        std::make_shared<const ActivityChartData>(ActivityChartData{std::move(report), calendar, std::move(chart)}));
}

DayStripsValue dayStripsValue(SharedReport report, const Viewpoint& viewpoint) {
    auto strips = dayStrips(*report, viewpoint);
    return DayStripsValue(
        std::make_shared<const DayStripsData>(DayStripsData{std::move(report), viewpoint.calendar, std::move(strips)}));
}

QVariantMap toMap(const CategoryPill& pill) {
    return {{"label", shown(pill.label)},
            {"color", name(pill.color)},
            {"category", shown(rawValue(categoryOf(pill.color)))}};
}

QVariant toVariant(const CategoryBreakdown& breakdown) {
    QVariantList rows;
    for (const auto& row : breakdown.rows)
        rows.append(QVariantMap{
            {"category", toMap(row.category)}, {"share", shown(row.share)}, {"duration", shown(row.duration)}});
    return QVariantMap{{"bar", toVariant(breakdown.bar)}, {"rows", rows}, {"summary", shown(breakdown.summary)}};
}

QVariant toVariant(const CategoryStackBar& bar) {
    return QVariant::fromValue(CategoryStackBarValue(std::make_shared<const CategoryStackBar>(bar)));
}

QVariant toVariant(const UsageTrend& trend) {
    return QVariant::fromValue(UsageTrendValue(std::make_shared<const UsageTrend>(trend)));
}

} // namespace kestrio
