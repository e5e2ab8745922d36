// Browsers as they show themselves on one accessibility bus: their frames, the page in each, its privacy and its tabs.
//
// Belongs to the queue of the bus, and every question shares the bus's deadline. Remembers what does not change in the
// life of an application or a frame, so that a second reading takes a handful of calls.
#pragma once

#include "Kestrio/Platform/Linux/AccessibilityBus.h"
#include "Kestrio/Platform/Linux/SettledPage.h"
#include "Kestrio/Platform/Linux/TitledWindow.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace kestrio {

struct BrowserFrame {
    AccessibleObject object;
    std::string name; // not empty
    pid_t process = 0;
    std::string applicationName;
    bool isGecko = false;
};

struct BrowserTabLabel {
    std::string label; // the title, and maybe more
    bool isSelected = false;
};

class BrowserTree {
public:
    /// Bus and clock must outlive the tree.
    BrowserTree(AccessibilityBus& bus, const Clock& clock, ApplicationOfProcess applicationOf);

    /// The frames of the browser, of each of its processes, in no particular order; none when it does not answer.
    /// Absent when it is not on this bus.
    std::optional<std::vector<BrowserFrame>> frames(const std::string& bundleIdentifier);

    bool isActive(const BrowserFrame& frame);

    /// Whether the frame stands where this window does.
    bool isAt(const BrowserFrame& frame, const TitledWindow& window);

    /// `titles` are those of the browser's windows in the window system. Where the frame cannot be read, it is private.
    bool isPrivate(const BrowserFrame& frame, const std::string& bundleIdentifier,
                   const std::vector<std::string>& titles);

    /// The page in the frame. Absent while there is none to be read. Title and address are read one after the other.
    std::optional<BrowserPage> page(const BrowserFrame& frame);

    /// The frame's tabs in their order. None when they cannot be read.
    std::vector<BrowserTabLabel> tabs(const BrowserFrame& frame);

private:
    struct Application {
        std::optional<pid_t> process;
        std::optional<std::string> name;
        std::optional<bool> isGecko;
    };
    /// What a walk through a frame's controls found.
    struct Controls {
        bool hasPrivateButton = false;
        std::vector<AccessibleObject> tabLists;
        std::set<AccessibleObject> panels; // whose children hold a tab's content each
    };
    struct Look {
        std::optional<Controls> controls; // absent when the walk was cut short
        int count = 0;
        Uptime last;
    };

    bool belongsTo(const AccessibleObject& root, const std::string& bundleIdentifier);
    void addFrames(const AccessibleObject& root, std::vector<BrowserFrame>& frames);
    std::optional<BrowserPage> pageOf(const AccessibleObject& document);
    std::optional<AccessibleObject> document(const BrowserFrame& frame);
    std::optional<AccessibleObject> shownDocument(const BrowserFrame& frame);
    std::vector<AccessibleObject> childrenOfRole(const AccessibleObject& object, std::uint32_t role);
    const std::optional<Controls>& look(const BrowserFrame& frame);
    std::optional<Controls> walk(const BrowserFrame& frame);

    AccessibilityBus& bus_;
    const Clock& clock_;
    const ApplicationOfProcess applicationOf_;
    std::map<std::string, Application> applications_; // by the owner of their objects
    std::map<AccessibleObject, Look> looks_;          // by frame
};

} // namespace kestrio
