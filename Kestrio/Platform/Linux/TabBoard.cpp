#include "Kestrio/Platform/Linux/TabBoard.h"

#include <algorithm>
#include <set>

namespace kestrio {

void TabBoard::put(Connection connection, const std::string& bundleIdentifier, Windows windows) {
    bool isNew = false;
    {
        const std::lock_guard guard(mutex_);
        isNew = !hasConnection(bundleIdentifier);
        auto& told = told_[connection];
        std::map<std::int64_t, std::uint64_t> focused;
        for (const auto& window : windows) {
            const auto before = std::find_if(told.windows.begin(), told.windows.end(),
                                             [&](const auto& other) { return other.id == window.id; });
            const bool hadFocus = before != told.windows.end() && before->isFocused;
            const auto known = told.focused.find(window.id);
            if (window.isFocused && !hadFocus)
                focused[window.id] = ++focusCount_;
            else if (known != told.focused.end())
                focused[window.id] = known->second;
        }
        told = {bundleIdentifier, std::move(windows), std::move(focused)};
    }
    changed_.notify_all();
    if (isNew)
        tellBrowsers();
}

void TabBoard::remove(Connection connection) {
    bool isGone = false;
    {
        const std::lock_guard guard(mutex_);
        const auto removed = told_.extract(connection);
        isGone = removed && !hasConnection(removed.mapped().bundleIdentifier);
    }
    changed_.notify_all();
    if (isGone)
        tellBrowsers();
}

Subscription TabBoard::observeBrowsers(std::function<void()> receiver) const {
    {
        const std::lock_guard guard(receiver_->mutex);
        receiver_->call = std::move(receiver);
    }
    return Subscription([held = receiver_] {
        const std::lock_guard guard(held->mutex);
        held->call = nullptr;
    });
}

void TabBoard::tellBrowsers() const {
    std::function<void()> call;
    {
        const std::lock_guard guard(receiver_->mutex);
        call = receiver_->call;
    }
    if (call)
        call();
}

std::vector<std::string> TabBoard::browsers() const {
    const std::lock_guard guard(mutex_);
    std::set<std::string> all;
    for (const auto& [connection, told] : told_)
        all.insert(told.bundleIdentifier);
    return {all.begin(), all.end()};
}

bool TabBoard::isConnected(const std::string& bundleIdentifier) const {
    const std::lock_guard guard(mutex_);
    return hasConnection(bundleIdentifier);
}

std::optional<TabBoard::Windows> TabBoard::windows(const std::string& bundleIdentifier) const {
    const std::lock_guard guard(mutex_);
    if (!hasConnection(bundleIdentifier))
        return std::nullopt;
    Windows windows;
    for (const auto& placed : frontToBack(bundleIdentifier))
        windows.push_back(*placed.window);
    return windows;
}

std::optional<BridgedWindow> TabBoard::focusedWindow(const std::string& bundleIdentifier, Seconds patience) const {
    std::unique_lock lock(mutex_);
    const BridgedWindow* window = nullptr;
    changed_.wait_for(lock, patience, [&] {
        window = focused(bundleIdentifier);
        return window || !hasConnection(bundleIdentifier);
    });
    return window ? std::optional(*window) : std::nullopt;
}

std::vector<BridgedTab> TabBoard::audibleTabs(const std::string& bundleIdentifier) const {
    const std::lock_guard guard(mutex_);
    std::vector<BridgedTab> audible;
    for (const auto& placed : frontToBack(bundleIdentifier))
        for (const auto& tab : placed.window->tabs)
            if (tab.isAudible && !tab.isMuted)
                audible.push_back(tab);
    return audible;
}

std::vector<TabBoard::Placed> TabBoard::frontToBack(const std::string& bundleIdentifier) const {
    std::vector<Placed> all;
    for (const auto& [connection, told] : told_) {
        if (told.bundleIdentifier != bundleIdentifier)
            continue;
        for (const auto& window : told.windows) {
            const auto focused = told.focused.find(window.id);
            all.push_back({&window, focused == told.focused.end() ? 0 : focused->second});
        }
    }
    // What has the focus is in front of what had it, even of what got it later.
    std::stable_sort(all.begin(), all.end(), [](const Placed& a, const Placed& b) {
        return std::pair(a.window->isFocused, a.focused) > std::pair(b.window->isFocused, b.focused);
    });
    return all;
}

const BridgedWindow* TabBoard::focused(const std::string& bundleIdentifier) const {
    const auto all = frontToBack(bundleIdentifier);
    return !all.empty() && all.front().window->isFocused ? all.front().window : nullptr;
}

bool TabBoard::hasConnection(const std::string& bundleIdentifier) const {
    return std::any_of(told_.begin(), told_.end(),
                       [&](const auto& each) { return each.second.bundleIdentifier == bundleIdentifier; });
}

} // namespace kestrio
