#include "Kestrio/Views/Design/Categories.h"

namespace kestrio {

QString colorName(SystemColor color) {
    switch (color) {
    case SystemColor::blue: return "blue";
    case SystemColor::teal: return "teal";
    case SystemColor::purple: return "purple";
    case SystemColor::orange: return "orange";
    case SystemColor::red: return "red";
    case SystemColor::brown: return "brown";
    case SystemColor::gray: return "gray";
    }
    return "gray";
}

QString Categories::colorName(const QString& category) const {
    return kestrio::colorName(color(activityCategory(category.toStdString()).value_or(ActivityCategory::other)));
}

} // namespace kestrio
