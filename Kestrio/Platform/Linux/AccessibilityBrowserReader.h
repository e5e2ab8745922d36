// Reads browsers through the desktop's accessibility bus, with nothing installed in them.
//
// It reads those of `BrowserInspector::scriptable` that are made from Chromium and exist on this host, and `readable`,
// the family of Firefox. Chromium tells of its pages only if accessibility was on before it started; Firefox at once.
//
// Belongs to its queue, blocks as its seam allows (a browser that does not answer costs the limit once; until it
// answers again it is left alone, and asked nothing), and needs no bus: one that dies is looked for again at a later
// question. It never starts the accessibility bus and never switches accessibility on.
//
// A page that changed is not believed at once, since its title and its address may be of two pages for a moment. While
// a browser is being watched, its page of before is the answer until the new one was read twice; a browser that was not
// watched is waited for, 0.2 s or twice that. Of a private window nothing leaves this class but that it is one.
#pragma once

#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Platform/BrowserReader.h"
#include "Kestrio/Platform/Linux/AccessibilityBus.h"
#include "Kestrio/Platform/Linux/BrowserTree.h"
#include "Kestrio/Platform/Linux/SettledPage.h"
#include "Kestrio/Platform/Linux/TitledWindow.h"
#include "Kestrio/Platform/Linux/VisitedPages.h"

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace kestrio {

class AccessibilityBrowserReader final : public BrowserReader {
public:
    static constexpr Seconds tabDeadline{2.0};
    static constexpr Seconds windowsDeadline{3.0};

    /// The browsers beside `BrowserInspector::scriptable` that are read here, by bundle identifier.
    static const std::set<std::string, std::less<>>& readable();

    struct Places {
        std::string sessionBus;        // its address
        std::filesystem::path runtime; // the person's runtime folder; may be empty
    };

    /// `applicationOf` tells which application a process on the bus belongs to, `windows` what the window system knows
    /// of its windows. `settled`, where given, is called on the queue when a page that was left open at a question has
    /// become certain: a good moment to ask again. Queue and clock must outlive the reader.
    AccessibilityBrowserReader(LoopQueue& queue, const Clock& clock, Places places, ApplicationOfProcess applicationOf,
                               TitledWindows windows, std::function<void()> settled = {});

    BrowserAnswer frontTab(const std::string& bundleIdentifier) override;

    /// Of a tab in the background the address is empty unless the tab was seen in front; a window that shows no page at
    /// the moment, because it is covered, is told by its tabs. Bounds are zero without a window system that knows them.
    BrowserAnswer windows(const std::string& bundleIdentifier) override;

    /// Whether the browser has let its pages be read since it runs. Asks nothing.
    bool isReadable(const std::string& bundleIdentifier) const;

    /// Whether the last answer to `frontTab` was given knowing whether the window is private; an empty text then means
    /// that it is an ordinary one. Asks nothing.
    bool knowsPrivacy(const std::string& bundleIdentifier) const;

private:
    struct Watched {
        SettledPage page;
        std::optional<Uptime> fruitlessWait;
    };
    /// What is kept of a browser while it runs.
    struct Memory {
        bool isReadable = false;
        std::map<AccessibleObject, Watched> frames;
        VisitedPages visited;
        std::map<std::uint32_t, AccessibleObject> frameOfWindow; // where it was certain once
        std::map<std::uint32_t, bool> isPrivateWindow;
        bool isFrontKnown = false;
    };
    /// Which frame a window is, or the front one. Private without a frame means that it is or may be one that is.
    struct Found {
        const BrowserFrame* frame = nullptr;
        bool isPrivate = false;
        bool isKnown = false; // whether it is private
    };
    /// All that is known of a browser at one question.
    struct View {
        const std::string& bundleIdentifier;
        Memory& memory;
        std::vector<TitledWindow> windows; // front to back; none where no window system tells of them
        std::vector<BrowserFrame> frames;
        std::vector<std::string> titles; // of the windows

        const BrowserFrame* frame(const AccessibleObject& object) const;
    };

    bool connect(Uptime end);
    std::optional<View> view(const std::string& bundleIdentifier, Seconds span);
    void forgetWhatIsGone(const View& view) const;

    Found front(View& view);
    Found frameOf(View& view, const TitledWindow& window);
    std::vector<const BrowserFrame*> possible(const View& view, const TitledWindow& window) const;
    static std::vector<const BrowserFrame*> named(const std::vector<const BrowserFrame*>& frames,
                                                  const TitledWindow& window);
    static bool isUnmistakable(const View& view, const BrowserFrame& frame, const TitledWindow& window);
    const BrowserFrame* theOne(const std::vector<const BrowserFrame*>& candidates, const TitledWindow& window);
    bool isPrivate(const View& view, const BrowserFrame& frame);
    Found amongSeveral(const View& view, const std::vector<const BrowserFrame*>& candidates);
    Found withPrivacy(View& view, const BrowserFrame* frame, const TitledWindow* window);

    void see(Memory& memory, const BrowserFrame& frame);
    void waitFor(Memory& memory, const BrowserFrame& frame);
    void confirmSoon(const std::string& bundleIdentifier, const BrowserFrame& frame, int attempt);
    std::string windowPiece(View& view, const BrowserFrame& frame, const Rectangle& bounds);

    LoopQueue& queue_;
    const Clock& clock_;
    const Places places_;
    const ApplicationOfProcess applicationOf_;
    const TitledWindows windows_;
    const std::function<void()> settled_;
    std::unique_ptr<AccessibilityBus> bus_;
    std::unique_ptr<BrowserTree> tree_;
    std::optional<Uptime> lastAttempt_;
    std::map<std::string, Memory> memories_;
    Subscription confirming_;
};

} // namespace kestrio
