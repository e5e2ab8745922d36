#include "Kestrio/Views/Window/OverviewModel.h"

#include "Kestrio/Shell/Settings.h"
#include "Kestrio/Views/Charts/ChartValues.h"
#include "Kestrio/Views/Values/Rows.h"

namespace kestrio {
namespace {

QVariant chartCard(const CardHead& head, const QVariant& value) {
    return Fields().add("head", toVariant(head)).add("value", value);
}

QVariantMap contentOf(const OverviewPage& page, const ActivityChartValue& chart) {
    return Fields()
        .add("stats", toVariants(page.stats))
        .add("activity", chartCard(page.activity.head, QVariant::fromValue(chart)))
        .add("categories", chartCard(page.categories.head, toVariant(page.categories.chart)))
        .add("apps", toVariant(page.apps))
        .add("websites", toVariant(page.websites))
        .add("youtube", toVariant(page.youtube))
        .add("alongside", toVariant(page.alongside))
        .add("projects", toVariant(page.projects));
}

} // namespace

OverviewModel::OverviewModel(const WindowParts& parts)
    : ReportPageModel(parts), settings_(parts.settings.observe([this](const std::string& key) {
          if (key == settingKey::showYouTubeThumbnails)
              invalidate();
      })) {}

void OverviewModel::refresh() {
    const auto thumbnails =
        parts().settings.boolean(settingKey::showYouTubeThumbnails) ? Thumbnails::on : Thumbnails::off;
    const auto page = overviewPage(report(), parts().dashboard.mode().value(), thumbnails, parts().viewpoint());
    const auto* const empty = std::get_if<EmptyActivity>(&page);
    empty_ = empty ? toVariant(*empty) : QVariant();
    // The cards are still there for a moment, and read on.
    if (!empty)
        content_ = contentOf(std::get<OverviewPage>(page), activityChartValue(sharedReport(), parts().calendar));
    Q_EMIT refreshed();
}

} // namespace kestrio
