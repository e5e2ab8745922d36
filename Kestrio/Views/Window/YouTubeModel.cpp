#include "Kestrio/Views/Window/YouTubeModel.h"

#include "Kestrio/Shell/Settings.h"
#include "Kestrio/Views/Values/Rows.h"

namespace kestrio {

YouTubeModel::YouTubeModel(const WindowParts& parts)
    : ReportPageModel(parts), settings_(parts.settings.observe([this](const std::string& key) {
          if (key == settingKey::showYouTubeThumbnails)
              invalidate();
      })) {}

void YouTubeModel::refresh() {
    const auto thumbnails =
        parts().settings.boolean(settingKey::showYouTubeThumbnails) ? Thumbnails::on : Thumbnails::off;
    const VideoChoice choice{.sort = sort_, .filter = itemFilter(filter_), .thumbnails = thumbnails};
    auto answer = youtubePage(report(), choice, parts().viewpoint());
    const auto* const nothing = std::get_if<EmptyActivity>(&answer);
    empty_ = nothing ? toVariant(*nothing) : QVariant();
    auto page = nothing ? YouTubePage() : std::move(std::get<YouTubePage>(answer));
    stats_ = toVariants(page.stats);
    videosHead_ = toVariant(page.videosHead);
    message_ = page.message ? shown(*page.message) : QString();
    searches_ = toVariant(page.searches);
    all_ = std::move(page.videos);
    showPortion();
    Q_EMIT refreshed();
}

void YouTubeModel::showPortion() {
    const auto shown = static_cast<std::ptrdiff_t>(portion_.shown(all_.size()));
    videos_.set({all_.begin(), all_.begin() + shown});
}

QString YouTubeModel::moreTitle() const {
    const auto title = portion_.moreTitle(all_.size());
    return title ? shown(*title) : QString();
}

void YouTubeModel::showMore() {
    portion_.showMore(all_.size());
    showPortion();
    Q_EMIT refreshed();
}

void YouTubeModel::setFilter(const QString& typed) {
    if (typed == filter_)
        return;
    filter_ = typed;
    Q_EMIT choiceChanged();
    invalidate();
}

QString YouTubeModel::sortTitle() {
    return shown(YouTubePage::sortTitle);
}

QVariantList YouTubeModel::sorts() const {
    QVariantList entries;
    for (const auto order : allVideoSorts)
        entries.append(Fields().words("title", label(order)).add("isCurrent", order == sort_));
    return entries;
}

QString YouTubeModel::sort() const {
    return shown(label(sort_));
}

void YouTubeModel::sortBy(int place) {
    const bool isOne = place >= 0 && place < static_cast<int>(allVideoSorts.size());
    const auto order = isOne ? allVideoSorts[static_cast<std::size_t>(place)] : sort_;
    if (std::exchange(sort_, order) == order)
        return;
    Q_EMIT choiceChanged();
    invalidate();
}

} // namespace kestrio
