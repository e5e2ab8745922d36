#include "Kestrio/Pages/HistoryNotice.h"

#include <fmt/format.h>

namespace kestrio {
namespace {

std::string reason(DatabaseTrouble trouble, const std::string& file) {
    switch (trouble) {
    case DatabaseTrouble::missing:
        return fmt::format("The file {} is gone. Once it is back, your history shows again.", file);
    case DatabaseTrouble::forbidden:
        return fmt::format("You have no permission to read {}. Once you do, your history shows again.", file);
    case DatabaseTrouble::locked:
        return fmt::format(
            "Another program is using {}. Nothing is lost; once that program lets go of it, your history "
            "shows again.",
            file);
    case DatabaseTrouble::damaged:
        return fmt::format("The file {} is damaged. If you have a copy of it, put that in its place.", file);
    case DatabaseTrouble::unreadable: return fmt::format("The file {} cannot be read.", file);
    }
    return {};
}

} // namespace

HistoryNotice historyNotice(DatabaseTrouble trouble, const std::string& file, HistoryShown shown) {
    HistoryNotice notice{.symbol = "exclamationmark.triangle.fill",
                         .tint = SystemColor::orange,
                         .title = "Your history cannot be read",
                         .text = reason(trouble, file)};
    if (shown == HistoryShown::earlier)
        notice.text += " What you see was read before.";
    return notice;
}

} // namespace kestrio
