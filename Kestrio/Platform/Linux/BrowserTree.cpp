#include "Kestrio/Platform/Linux/BrowserTree.h"

#include "Kestrio/Platform/Linux/WindowPrivacy.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <deque>
#include <thread>
#include <utility>

namespace kestrio {
namespace {

/// The first question for what a frame embeds only makes the browser look.
constexpr std::chrono::milliseconds untilItLooked{5};

/// Chromium has three for each window.
constexpr std::size_t mostFrames = 256;

/// The controls of a window are some 80 objects in Firefox and 230 in Chromium.
constexpr std::size_t mostControls = 2000;

/// A window that has just opened may not have all of its controls. So what was not found is looked for once more.
constexpr Seconds untilSecondLook{3.0};
constexpr int mostLooks = 2;

/// On its toolbar in every private window of Firefox.
constexpr const char* privateButton = "reset-pbm-toolbar-button";

bool isContent(std::uint32_t role) {
    return role == AccessibilityBus::documentWeb || role == AccessibilityBus::documentFrame ||
           role == AccessibilityBus::internalFrame;
}

std::string value(const AccessibilityBus::Attributes& attributes, const char* key) {
    const auto found = attributes.find(key);
    return found == attributes.end() ? std::string() : found->second;
}

bool isNear(double a, double b) {
    return std::abs(a - b) <= 2; // of rounding on scaled screens
}

bool isNear(const Rectangle& a, const Rectangle& b) {
    return isNear(a.x, b.x) && isNear(a.y, b.y) && isNear(a.width, b.width) && isNear(a.height, b.height);
}

} // namespace

BrowserTree::BrowserTree(AccessibilityBus& bus, const Clock& clock, ApplicationOfProcess applicationOf)
    : bus_(bus), clock_(clock), applicationOf_(std::move(applicationOf)) {}

std::optional<std::vector<BrowserFrame>> BrowserTree::frames(const std::string& bundleIdentifier) {
    const auto roots = bus_.applications();
    if (!roots)
        return std::nullopt;
    std::set<std::string> present;
    for (const auto& root : *roots)
        present.insert(root.owner);
    std::erase_if(applications_, [&](const auto& entry) { return !present.contains(entry.first); });
    std::erase_if(looks_, [&](const auto& entry) { return !present.contains(entry.first.owner); });

    std::optional<std::vector<BrowserFrame>> frames;
    for (const auto& root : *roots)
        if (belongsTo(root, bundleIdentifier)) {
            if (!frames)
                frames.emplace();
            addFrames(root, *frames);
        }
    return frames;
}

bool BrowserTree::belongsTo(const AccessibleObject& root, const std::string& bundleIdentifier) {
    auto& known = applications_[root.owner];
    if (!known.process)
        known.process = bus_.process(root.owner);
    return known.process && applicationOf_(*known.process) == bundleIdentifier;
}

void BrowserTree::addFrames(const AccessibleObject& root, std::vector<BrowserFrame>& frames) {
    auto children = bus_.children(root);
    if (!children)
        return;
    children->resize(std::min(children->size(), mostFrames));
    auto& known = applications_[root.owner];
    if (!known.name)
        known.name = bus_.name(root);
    if (!known.isGecko)
        if (const auto toolkit = bus_.toolkit(root))
            known.isGecko = *toolkit == "Gecko";
    if (!known.isGecko)
        return; // how its private windows look is not known
    std::set<AccessibleObject> present;
    for (const auto& child : *children) {
        present.insert(child);
        // Chromium has frames without a name beside each window: not its own.
        auto name = bus_.name(child).value_or("");
        if (!name.empty())
            frames.push_back({child, std::move(name), *known.process, known.name.value_or(""), *known.isGecko});
    }
    std::erase_if(looks_,
                  [&](const auto& entry) { return entry.first.owner == root.owner && !present.contains(entry.first); });
}

bool BrowserTree::isActive(const BrowserFrame& frame) {
    return (bus_.states(frame.object).value_or(0) & AccessibilityBus::active) != 0;
}

bool BrowserTree::isAt(const BrowserFrame& frame, const TitledWindow& window) {
    const auto extents = bus_.extents(frame.object);
    return extents && (isNear(*extents, window.bounds) || isNear(*extents, window.extents));
}

bool BrowserTree::isPrivate(const BrowserFrame& frame, const std::string& bundleIdentifier,
                            const std::vector<std::string>& titles) {
    if (!frame.isGecko)
        return isPrivateFrame(frame.name, frame.applicationName, titles);
    if (privacyOfTitle(frame.name, bundleIdentifier) == WindowPrivacy::isPrivate)
        return true;
    const auto& controls = look(frame);
    return !controls || controls->hasPrivateButton;
}

std::optional<AccessibleObject> BrowserTree::document(const BrowserFrame& frame) {
    const auto documents = bus_.embedded(frame.object);
    if (documents && !documents->empty())
        return documents->front();
    return frame.isGecko ? shownDocument(frame) : std::nullopt;
}

std::vector<AccessibleObject> BrowserTree::childrenOfRole(const AccessibleObject& object, std::uint32_t role) {
    auto children = bus_.children(object).value_or(std::vector<AccessibleObject>());
    std::erase_if(children, [&](const AccessibleObject& child) { return bus_.role(child) != role; });
    return children;
}

/// Firefox forgets to embed a page that it brings back from its memory when the person goes back. The page is in the
/// panel of the tab that shows; beside it a sidebar may show a page of its own.
std::optional<AccessibleObject> BrowserTree::shownDocument(const BrowserFrame& frame) {
    const auto& controls = look(frame);
    if (!controls)
        return std::nullopt;
    for (const auto& panel : controls->panels)
        for (const auto& pane : bus_.children(panel).value_or(std::vector<AccessibleObject>())) {
            if ((bus_.states(pane).value_or(0) & AccessibilityBus::showing) == 0)
                continue;
            for (const auto& inner : childrenOfRole(pane, AccessibilityBus::internalFrame))
                for (auto& document : childrenOfRole(inner, AccessibilityBus::documentWeb))
                    if (const auto title = bus_.name(document);
                        title && !title->empty() && frame.name.find(*title) != std::string::npos)
                        return std::move(document);
        }
    return std::nullopt;
}

std::optional<BrowserPage> BrowserTree::pageOf(const AccessibleObject& document) {
    const auto attributes = bus_.documentAttributes(document);
    if (!attributes)
        return std::nullopt;
    auto address = value(*attributes, "URI"); // Chromium
    if (address.empty())
        address = value(*attributes, "DocURL"); // Firefox
    auto title = bus_.name(document);
    if (address.empty() || !title)
        return std::nullopt;
    return BrowserPage{std::move(address), std::move(*title)};
}

std::optional<BrowserPage> BrowserTree::page(const BrowserFrame& frame) {
    const auto first = document(frame);
    auto read = first ? pageOf(*first) : std::nullopt;
    // The frame is named after the page that it shows: another page in it is that of the tab before.
    if (read && frame.name.find(read->title) != std::string::npos)
        return read;
    if (bus_.isSilent(frame.object.owner) || bus_.left() <= untilItLooked)
        return std::nullopt;
    std::this_thread::sleep_for(untilItLooked);
    const auto second = document(frame);
    return second ? pageOf(*second) : std::nullopt;
}

const std::optional<BrowserTree::Controls>& BrowserTree::look(const BrowserFrame& frame) {
    auto& known = looks_[frame.object];
    const auto now = clock_.uptime();
    const bool isComplete = known.controls && (known.controls->hasPrivateButton || known.count >= mostLooks);
    if (isComplete || (known.controls && now - known.last < untilSecondLook))
        return known.controls;
    known.controls = walk(frame);
    known.count += known.controls ? 1 : 0;
    known.last = now;
    return known.controls;
}

/// Breadth first, and never into what a page shows.
std::optional<BrowserTree::Controls> BrowserTree::walk(const BrowserFrame& frame) {
    struct Step {
        AccessibleObject object;
        AccessibleObject parent;
        AccessibleObject grandparent;
    };
    Controls controls;
    std::deque<Step> waiting{{frame.object, {}, {}}};
    for (std::size_t seen = 0; !waiting.empty() && seen < mostControls; ++seen) {
        const auto [object, parent, grandparent] = std::move(waiting.front());
        waiting.pop_front();
        const auto role = bus_.role(object);
        if (!role && (bus_.isSilent(object.owner) || bus_.left() <= Seconds(0)))
            return std::nullopt;
        if (role == AccessibilityBus::internalFrame)
            controls.panels.insert(grandparent);
        if (!role || isContent(*role) || *role == AccessibilityBus::pageTab)
            continue;
        if (*role == AccessibilityBus::pageTabList)
            controls.tabLists.push_back(object);
        if (frame.isGecko && *role == AccessibilityBus::pushButton) {
            const auto attributes = bus_.attributes(object);
            controls.hasPrivateButton |= attributes && value(*attributes, "id") == privateButton;
            continue;
        }
        for (auto& child : bus_.children(object).value_or(std::vector<AccessibleObject>()))
            waiting.push_back({std::move(child), object, parent});
    }
    return controls;
}

std::vector<BrowserTabLabel> BrowserTree::tabs(const BrowserFrame& frame) {
    const auto& controls = look(frame);
    if (!controls)
        return {};
    std::vector<BrowserTabLabel> tabs;
    for (const auto& list : controls->tabLists) {
        const auto children = bus_.children(list);
        for (const auto& child : children.value_or(std::vector<AccessibleObject>())) {
            if (bus_.role(child) != AccessibilityBus::pageTab)
                continue;
            const auto states = bus_.states(child);
            auto label = bus_.name(child);
            if (states && label)
                tabs.push_back({std::move(*label), (*states & AccessibilityBus::selected) != 0});
        }
        if (!tabs.empty())
            return tabs;
    }
    looks_[frame.object].count = 0; // the lists that were found are gone
    return tabs;
}

} // namespace kestrio
