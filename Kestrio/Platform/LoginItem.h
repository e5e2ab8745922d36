// Seam: whether the program starts by itself when the person logs in. Any thread; takes the time of a small file.
#pragma once

#include <optional>
#include <string>

namespace kestrio {

class LoginItem {
public:
    virtual ~LoginItem() = default;

    virtual bool isEnabled() const = 0;

    /// What went wrong, in words for the log; absent when it worked. Both are idempotent.
    virtual std::optional<std::string> enable() = 0;
    virtual std::optional<std::string> disable() = 0;
};

} // namespace kestrio
