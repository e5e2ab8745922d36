#include "Kestrio/Views/Design/Categories.h"

#include "Kestrio/Views/Values/Shown.h"

namespace kestrio {

QString Categories::colorName(const QString& category) const {
    return kestrio::colorName(color(activityCategory(category.toStdString()).value_or(ActivityCategory::other)));
}

} // namespace kestrio
