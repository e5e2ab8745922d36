#include "Kestrio/Views/Window/OverviewModel.h"

#include "Kestrio/Shell/Settings.h"
#include "Kestrio/Views/Values/Rows.h"

namespace kestrio {
namespace {

template <class Chart>
QVariant chartCard(const ChartCard<Chart>& card) {
    return Fields().add("head", toVariant(card.head));
}

QVariantMap contentOf(const OverviewPage& page) {
    return Fields()
        .add("stats", toVariants(page.stats))
        .add("activity", chartCard(page.activity))
        .add("categories", chartCard(page.categories))
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
    content_ = empty ? QVariantMap() : contentOf(std::get<OverviewPage>(page));
    Q_EMIT refreshed();
}

} // namespace kestrio
