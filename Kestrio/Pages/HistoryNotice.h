// What is said while the recorded history cannot be read: above a page, or in place of one that would look as if
// nothing had ever been recorded. Plain values.
#pragma once

#include "Kestrio/Base/DatabaseTrouble.h"
#include "Kestrio/Model/Models.h"

#include <string>

namespace kestrio {

struct HistoryNotice {
    std::string symbol;
    SystemColor tint = SystemColor::orange;
    std::string title;
    std::string text;
    friend bool operator==(const HistoryNotice&, const HistoryNotice&) = default;
};

enum class HistoryShown { nothing, earlier }; // what was read before

/// `file` is the one with the history, as a person would look for it.
HistoryNotice historyNotice(DatabaseTrouble trouble, const std::string& file, HistoryShown shown);

} // namespace kestrio
