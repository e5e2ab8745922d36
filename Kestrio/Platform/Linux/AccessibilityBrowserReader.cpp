#include "Kestrio/Platform/Linux/AccessibilityBrowserReader.h"

#include "Kestrio/Platform/Linux/BrowserAnswers.h"
#include "Kestrio/Platform/Linux/WindowPrivacy.h"

#include <algorithm>
#include <thread>
#include <utility>

namespace kestrio {
namespace {

constexpr Seconds betweenAttempts{5.0};

/// How long a frame whose page would not settle is not waited for again.
constexpr Seconds betweenFruitlessWaits{10.0};
constexpr int mostWaits = 2;

constexpr Seconds confirmationDeadline{0.4};
constexpr int mostConfirmations = 4;

} // namespace

const std::set<std::string, std::less<>>& AccessibilityBrowserReader::readable() {
    return geckoBrowsers();
}

AccessibilityBrowserReader::AccessibilityBrowserReader(LoopQueue& queue, const Clock& clock, Places places,
                                                       ApplicationOfProcess applicationOf, TitledWindows windows,
                                                       std::function<void()> settled)
    : queue_(queue),
      clock_(clock),
      places_(std::move(places)),
      applicationOf_(std::move(applicationOf)),
      windows_(std::move(windows)),
      settled_(std::move(settled)) {}

bool AccessibilityBrowserReader::isReadable(const std::string& bundleIdentifier) const {
    const auto found = memories_.find(bundleIdentifier);
    return found != memories_.end() && found->second.isReadable;
}

bool AccessibilityBrowserReader::knowsPrivacy(const std::string& bundleIdentifier) const {
    const auto found = memories_.find(bundleIdentifier);
    return found != memories_.end() && found->second.isFrontKnown;
}

const BrowserFrame* AccessibilityBrowserReader::View::frame(const AccessibleObject& object) const {
    const auto found =
        std::find_if(frames.begin(), frames.end(), [&](const BrowserFrame& each) { return each.object == object; });
    return found == frames.end() ? nullptr : &*found;
}

bool AccessibilityBrowserReader::connect(Uptime end) {
    if (bus_ && !bus_->isAlive()) {
        confirming_.cancel();
        tree_.reset();
        bus_.reset();
        memories_.clear(); // objects of another bus may bear the same names
    }
    const auto now = clock_.uptime();
    if (!bus_ && (!lastAttempt_ || now - *lastAttempt_ >= betweenAttempts)) {
        lastAttempt_ = now;
        bus_ = AccessibilityBus::open(queue_, clock_, places_.sessionBus, places_.runtime);
        if (bus_)
            tree_ = std::make_unique<BrowserTree>(*bus_, clock_, applicationOf_);
    }
    if (bus_)
        bus_->allow(end - clock_.uptime());
    return bus_ != nullptr;
}

std::optional<AccessibilityBrowserReader::View> AccessibilityBrowserReader::view(const std::string& bundleIdentifier,
                                                                                 Seconds span) {
    const auto end = clock_.uptime() + span;
    auto windows = windows_(bundleIdentifier);
    if (!connect(end))
        return std::nullopt;
    auto frames = tree_->frames(bundleIdentifier);
    if (!frames) {
        memories_.erase(bundleIdentifier);
        return std::nullopt;
    }
    View view{bundleIdentifier,
              memories_[bundleIdentifier],
              std::move(windows).value_or(std::vector<TitledWindow>()),
              std::move(*frames),
              {}};
    for (const auto& window : view.windows)
        view.titles.push_back(window.title);
    forgetWhatIsGone(view);
    return view;
}

void AccessibilityBrowserReader::forgetWhatIsGone(const View& view) const {
    auto& memory = view.memory;
    const auto isThere = [&](std::uint32_t id) {
        return std::any_of(view.windows.begin(), view.windows.end(),
                           [&](const auto& window) { return window.id == id; });
    };
    if (!view.windows.empty()) { // an answer that did not come says nothing
        std::erase_if(memory.frameOfWindow, [&](const auto& entry) { return !isThere(entry.first); });
        std::erase_if(memory.isPrivateWindow, [&](const auto& entry) { return !isThere(entry.first); });
    }
    if (!view.frames.empty())
        std::erase_if(memory.frames, [&](const auto& entry) { return !view.frame(entry.first); });
}

bool AccessibilityBrowserReader::isPrivate(const View& view, const BrowserFrame& frame) {
    return tree_->isPrivate(frame, view.bundleIdentifier, view.titles);
}

/// The frames that may be this window: all but those that are certainly another one.
std::vector<const BrowserFrame*> AccessibilityBrowserReader::possible(const View& view,
                                                                      const TitledWindow& window) const {
    const bool isToldByProcess = std::any_of(view.frames.begin(), view.frames.end(), [&](const BrowserFrame& frame) {
        return frame.process == window.process;
    }); // otherwise it is the proxy of a sandbox that speaks for the browser
    std::vector<const BrowserFrame*> found;
    for (const auto& frame : view.frames) {
        const auto& learned = view.memory.frameOfWindow;
        const bool isTaken = std::any_of(learned.begin(), learned.end(), [&](const auto& entry) {
            return entry.first != window.id && entry.second == frame.object;
        });
        if (!isTaken && (!isToldByProcess || frame.process == window.process))
            found.push_back(&frame);
    }
    return found;
}

/// Those of the frames that have the name of the window.
std::vector<const BrowserFrame*> AccessibilityBrowserReader::named(const std::vector<const BrowserFrame*>& frames,
                                                                   const TitledWindow& window) {
    std::vector<const BrowserFrame*> found;
    for (const auto wanted : {NameMatch::exact, NameMatch::loose}) {
        for (const auto* frame : frames)
            if (matchNames(frame->name, window.title, frame->applicationName) == wanted)
                found.push_back(frame);
        if (!found.empty())
            break;
    }
    return found;
}

/// Whether no other window may be this frame, so that the two are one for good.
bool AccessibilityBrowserReader::isUnmistakable(const View& view, const BrowserFrame& frame,
                                                const TitledWindow& window) {
    const auto isNamed = [&](const TitledWindow& each) {
        return matchNames(frame.name, each.title, frame.applicationName) == NameMatch::exact;
    };
    return isNamed(window) && std::count_if(view.windows.begin(), view.windows.end(), isNamed) == 1;
}

/// Of several frames with the name of the window the one that is it. Null when it remains open.
const BrowserFrame* AccessibilityBrowserReader::theOne(const std::vector<const BrowserFrame*>& candidates,
                                                       const TitledWindow& window) {
    if (candidates.size() == 1)
        return candidates.front();
    const auto only = [&](const auto& condition) -> const BrowserFrame* {
        const BrowserFrame* found = nullptr;
        for (const auto* candidate : candidates)
            if (condition(*candidate)) {
                if (found)
                    return nullptr;
                found = candidate;
            }
        return found;
    };
    if (window.isActive)
        if (const auto* active = only([&](const BrowserFrame& frame) { return tree_->isActive(frame); }))
            return active;
    return only([&](const BrowserFrame& frame) { return tree_->isAt(frame, window); });
}

/// Which of them it is cannot be said: if one of them is private, that is what it may be.
AccessibilityBrowserReader::Found
AccessibilityBrowserReader::amongSeveral(const View& view, const std::vector<const BrowserFrame*>& candidates) {
    const bool isOnePrivate = std::any_of(candidates.begin(), candidates.end(),
                                          [&](const BrowserFrame* frame) { return isPrivate(view, *frame); });
    return {nullptr, isOnePrivate, !candidates.empty()};
}

AccessibilityBrowserReader::Found AccessibilityBrowserReader::withPrivacy(View& view, const BrowserFrame* frame,
                                                                          const TitledWindow* window) {
    const Found found{frame, isPrivate(view, *frame), true};
    if (window)
        view.memory.isPrivateWindow[window->id] = found.isPrivate;
    return found;
}

AccessibilityBrowserReader::Found AccessibilityBrowserReader::frameOf(View& view, const TitledWindow& window) {
    auto& learned = view.memory.frameOfWindow;
    if (const auto known = learned.find(window.id); known != learned.end())
        if (const auto* frame = view.frame(known->second))
            return withPrivacy(view, frame, &window);
    if (view.frames.empty()) { // it does not answer: what was known of the window still holds
        const auto known = view.memory.isPrivateWindow.find(window.id);
        return known == view.memory.isPrivateWindow.end() ? Found() : Found{nullptr, known->second, true};
    }
    const auto frames = possible(view, window);
    const auto candidates = named(frames, window);
    // None with a name that is just changing, and for what is no browser's window: a dialog.
    const auto* frame = candidates.empty() ? nullptr : theOne(candidates, window);
    if (!frame)
        return amongSeveral(view, candidates.empty() ? frames : candidates);
    if (isUnmistakable(view, *frame, window))
        learned[window.id] = frame->object;
    return withPrivacy(view, frame, &window);
}

AccessibilityBrowserReader::Found AccessibilityBrowserReader::front(View& view) {
    if (!view.windows.empty())
        return frameOf(view, view.windows.front());
    std::vector<const BrowserFrame*> all;
    std::vector<const BrowserFrame*> active;
    for (const auto& frame : view.frames) {
        all.push_back(&frame);
        if (tree_->isActive(frame))
            active.push_back(&frame);
    }
    if (active.size() == 1)
        return withPrivacy(view, active.front(), nullptr);
    return all.size() == 1 ? withPrivacy(view, all.front(), nullptr) : amongSeveral(view, all);
}

BrowserAnswer AccessibilityBrowserReader::frontTab(const std::string& bundleIdentifier) {
    auto seen = view(bundleIdentifier, tabDeadline);
    if (!seen)
        return std::string();
    const auto found = front(*seen);
    seen->memory.isFrontKnown = found.isKnown;
    if (found.isPrivate)
        return privateTabText();
    if (!found.frame)
        return std::string();
    auto& memory = seen->memory;
    see(memory, *found.frame);
    auto& page = memory.frames[found.frame->object].page;
    if (!page.answer(clock_.uptime()))
        waitFor(memory, *found.frame);
    if (!page.isSettled())
        confirmSoon(bundleIdentifier, *found.frame, 1);
    const auto* answer = page.answer(clock_.uptime());
    return answer ? tabText(*answer) : std::string();
}

void AccessibilityBrowserReader::see(Memory& memory, const BrowserFrame& frame) {
    auto page = tree_->page(frame);
    memory.isReadable |= page.has_value();
    auto& watched = memory.frames[frame.object].page;
    watched.see(page, clock_.uptime());
    if (watched.isSettled())
        memory.visited.remember(*page);
}

/// Blocks until the frame's page is certain, or nothing came of it.
void AccessibilityBrowserReader::waitFor(Memory& memory, const BrowserFrame& frame) {
    auto& watched = memory.frames[frame.object];
    if (watched.fruitlessWait && clock_.uptime() - *watched.fruitlessWait < betweenFruitlessWaits)
        return;
    for (int wait = 0; wait < mostWaits && !watched.page.isSettled(); ++wait) {
        if (bus_->isSilent(frame.object.owner) || bus_->left() <= SettledPage::settling)
            return;
        std::this_thread::sleep_for(SettledPage::settling);
        see(memory, frame);
    }
    watched.fruitlessWait = watched.page.isSettled() ? std::nullopt : std::optional(clock_.uptime());
}

void AccessibilityBrowserReader::confirmSoon(const std::string& bundleIdentifier, const BrowserFrame& frame,
                                             int attempt) {
    confirming_ = queue_.after(SettledPage::settling, [this, bundleIdentifier, frame, attempt] {
        confirming_.cancel();
        const auto memory = memories_.find(bundleIdentifier);
        if (!bus_ || !bus_->isAlive() || memory == memories_.end() || bus_->isSilent(frame.object.owner))
            return;
        bus_->allow(confirmationDeadline);
        see(memory->second, frame);
        const auto& page = memory->second.frames[frame.object].page;
        if (page.isSettled()) {
            if (settled_)
                settled_();
        } else if (attempt < mostConfirmations) {
            confirmSoon(bundleIdentifier, frame, attempt + 1);
        }
    });
}

BrowserAnswer AccessibilityBrowserReader::windows(const std::string& bundleIdentifier) {
    auto seen = view(bundleIdentifier, windowsDeadline);
    if (!seen)
        return std::string();
    struct Row {
        Found found;
        Rectangle bounds;
    };
    std::vector<Row> rows;
    for (const auto& window : seen->windows)
        rows.push_back({frameOf(*seen, window), window.bounds});
    if (seen->windows.empty())
        for (const auto& frame : seen->frames)
            rows.push_back({withPrivacy(*seen, &frame, nullptr), {}});

    auto& memory = seen->memory;
    bool isSettling = false;
    for (const auto& [found, bounds] : rows)
        if (found.frame && !found.isPrivate) {
            see(memory, *found.frame);
            isSettling |= memory.frames[found.frame->object].page.isSettling();
        }
    if (isSettling && bus_->left() > SettledPage::settling) {
        std::this_thread::sleep_for(SettledPage::settling);
        for (const auto& [found, bounds] : rows)
            if (found.frame && !found.isPrivate && memory.frames[found.frame->object].page.isSettling())
                see(memory, *found.frame);
    }
    std::vector<std::string> pieces;
    for (const auto& [found, bounds] : rows) {
        auto piece = found.isPrivate ? privateWindowText(bounds)
                     : found.frame   ? windowPiece(*seen, *found.frame, bounds)
                                     : std::string();
        if (!piece.empty())
            pieces.push_back(std::move(piece));
    }
    return windowsText(pieces);
}

/// Empty when neither the page nor the tabs can be read.
std::string AccessibilityBrowserReader::windowPiece(View& view, const BrowserFrame& frame, const Rectangle& bounds) {
    const auto& memory = view.memory;
    const auto* shown = memory.frames.at(frame.object).page.answer(clock_.uptime());
    std::optional<BrowserPage> active = shown ? std::optional(*shown) : std::nullopt;
    std::vector<BrowserPage> tabs;
    for (const auto& [label, isSelected] : tree_->tabs(frame)) {
        const auto* visited = memory.visited.find(label);
        auto page = visited ? *visited : BrowserPage{"", label};
        if (isSelected && active)
            page = *active;
        else if (isSelected)
            active = page;
        tabs.push_back(std::move(page));
    }
    if (!active)
        return {};
    if (tabs.empty())
        tabs.push_back(*active);
    return windowText(bounds, *active, tabs);
}

} // namespace kestrio
