// An accessibility bus of a test's own: the launcher on the session bus, the registry, and browsers that show what the
// test last put into them, with all the manners that real ones have.
#pragma once

#include "Tests/Platform/Linux/ServedBus.h"

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace kestrio {

/// Owns org.a11y.Bus on a session bus.
class MockAccessibilityLauncher {
public:
    MockAccessibilityLauncher(const std::string& sessionBus, std::string address, bool isEnabled);
    ~MockAccessibilityLauncher();

    /// How often the address was asked for, which starts a real bus.
    int starts() const { return starts_; }

private:
    std::atomic<int> starts_ = 0;
    ServedBus bus_;
    std::unique_ptr<sdbus::IObject> object_;
};

/// What goes wrong on purpose.
enum class Malformed { no, children, name, relations, document, states, endless };

class MockBrowser {
public:
    static constexpr int mostFrames = 3;
    static constexpr int mostTabs = 3;

    struct Tab {
        std::string label;
        bool isSelected = false;
    };
    struct Frame {
        std::string name;
        std::string title;
        std::string address;
        bool isActive = false;
        bool hasDocument = true;
        bool isRestored = false; // the document is not embedded, and lies in the pane of its tab
        bool hasPrivateButton = false;
        int unprimed = 0;    // so many questions for the document are answered with none
        int lateAddress = 0; // so many questions for the address are answered with an empty one
        std::vector<Tab> tabs = {};
        std::array<std::int32_t, 4> extents{0, 0, 800, 600};
        bool isGone = false; // listed, but every question to it fails
    };
    struct Script {
        std::string name;
        std::string toolkit;
        std::vector<Frame> frames;
        Malformed malformed = Malformed::no; // from the start
    };

    MockBrowser(const std::string& bus, std::string owner, Script script);
    ~MockBrowser();

    const std::string& owner() const { return owner_; }

    void change(const std::function<void(Script&)>& edit);

    /// Stops answering, or goes on.
    void pause(bool isPaused) { bus_.pause(isPaused); }

    /// How often a frame was asked for its document.
    int documentQuestions() const { return documentQuestions_; }

private:
    using Answer = std::function<void(sdbus::MethodReply& reply, Frame& frame)>;

    void serveRoot();
    void serveFrame(int number);
    void serveControls(int number);
    void servePanes(int number);
    sdbus::IObject& object(const std::string& path);
    void method(sdbus::IObject& object, const char* interface, const char* name, const char* input, const char* output,
                std::function<void(sdbus::MethodReply&)> answer);
    void methodOf(int frame, sdbus::IObject& object, const char* interface, const char* name, const char* input,
                  const char* output, Answer answer);
    void nameOf(sdbus::IObject& object, std::function<std::string()> name);

    const std::string owner_;
    std::mutex mutex_; // guards the script
    Script script_;
    std::atomic<int> documentQuestions_ = 0;
    ServedBus bus_;
    std::vector<std::unique_ptr<sdbus::IObject>> objects_;
};

class MockAccessibilityRegistry {
public:
    explicit MockAccessibilityRegistry(const std::string& bus);
    ~MockAccessibilityRegistry();

    void list(std::vector<std::string> owners);

private:
    std::mutex mutex_;
    std::vector<std::string> owners_;
    ServedBus bus_;
    std::unique_ptr<sdbus::IObject> object_;
};

} // namespace kestrio
