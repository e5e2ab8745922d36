#include "Kestrio/Views/Window/PageModel.h"

namespace kestrio {

void PageModel::setShown(bool isShown) {
    isShown_ = isShown;
    if (isShown_ && isStale_)
        invalidate();
}

void PageModel::invalidate() {
    isStale_ = !isShown_;
    if (isShown_)
        refresh();
}

ReportPageModel::ReportPageModel(const WindowParts& parts)
    : PageModel(parts), changes_(parts.dashboard.report().observe([this](const auto&) { invalidate(); })) {}

} // namespace kestrio
