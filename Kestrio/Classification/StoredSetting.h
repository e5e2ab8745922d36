// One of the person's settings as classification sees it: where it is read and where it is kept is the wiring's affair.
#pragma once

#include <functional>
#include <optional>

namespace kestrio {

template <class Value>
struct StoredSetting {
    /// Absent when nothing of the type is stored.
    std::function<std::optional<Value>()> read = [] { return std::nullopt; };
    /// False when the value cannot be kept; the old one then stays stored.
    std::function<bool(const Value&)> write = [](const Value&) { return true; };
};

} // namespace kestrio
