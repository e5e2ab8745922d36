// Plain calls on the desktop's accessibility bus, where applications show their windows as trees of objects.
//
// Belongs to a queue. Every call waits, and all calls until the next `allow` share one deadline. What comes back is
// another program's: lists and texts are cut at a bound, texts are valid UTF-8. An absent answer is one that did not
// come: the object is gone, the reply was of another shape, the time was up, or its owner is silent.
//
// An owner that let a call run out of time counts as silent from then on and is not waited for again. One question
// without a deadline lies with it, and whatever answers that ends the silence.
#pragma once

#include "Kestrio/Base/Clock.h"
#include "Kestrio/Base/Rectangle.h"
#include "Kestrio/Platform/Linux/BusConnection.h"

#include <compare>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace sdbus {
class MethodCall;
class MethodReply;
class IProxy;
} // namespace sdbus

namespace kestrio {

/// An object in some application's tree.
struct AccessibleObject {
    std::string owner; // its application's name on the bus
    std::string path;

    friend auto operator<=>(const AccessibleObject&, const AccessibleObject&) = default;
};

class AccessibilityBus {
public:
    /// The numbers of the roles that are asked for here, as the protocol counts them.
    enum Role : std::uint32_t {
        internalFrame = 28,
        pageTab = 37,
        pageTabList = 38,
        pushButton = 43,
        documentFrame = 82,
        documentWeb = 95
    };

    /// Bits of `states`.
    static constexpr std::uint64_t active = std::uint64_t{1} << 1;
    static constexpr std::uint64_t selected = std::uint64_t{1} << 23;
    static constexpr std::uint64_t showing = std::uint64_t{1} << 25;

    using Attributes = std::map<std::string, std::string>;

    /// The accessibility bus that belongs to a session bus. Null when this desktop has none; none is ever started, and
    /// accessibility is never switched on. `runtime` is the person's runtime folder, where a running bus has its
    /// socket. Queue and clock must outlive the answer.
    static std::unique_ptr<AccessibilityBus> open(LoopQueue& queue, const Clock& clock, const std::string& sessionBus,
                                                  const std::filesystem::path& runtime);

    ~AccessibilityBus();

    bool isAlive() const { return bus_->isAlive(); }

    /// From here on calls may take so long, all together.
    void allow(Seconds span);
    Seconds left() const { return deadline_ - clock_.uptime(); }

    bool isSilent(const std::string& owner) const;

    /// The roots of the applications on this bus.
    std::optional<std::vector<AccessibleObject>> applications();

    /// The process at the other end of this name: the application's own, or that of the proxy of its sandbox.
    std::optional<pid_t> process(const std::string& owner);

    std::optional<std::vector<AccessibleObject>> children(const AccessibleObject& object);
    std::optional<std::string> name(const AccessibleObject& object);
    std::optional<std::uint32_t> role(const AccessibleObject& object);
    std::optional<std::uint64_t> states(const AccessibleObject& object);
    std::optional<Attributes> attributes(const AccessibleObject& object);
    std::optional<Attributes> documentAttributes(const AccessibleObject& document);

    /// On the screen, as the application believes.
    std::optional<Rectangle> extents(const AccessibleObject& object);

    /// The toolkit that an application's root says it is made with.
    std::optional<std::string> toolkit(const AccessibleObject& application);

    /// What a frame embeds: the document of its active tab. Browsers compute it on demand, and may answer with none at
    /// the first question.
    std::optional<std::vector<AccessibleObject>> embedded(const AccessibleObject& frame);

private:
    using Write = std::function<void(sdbus::MethodCall&)>;
    using Read = std::function<void(sdbus::MethodReply&)>;

    AccessibilityBus(std::unique_ptr<BusConnection> bus, const Clock& clock);

    bool call(const AccessibleObject& object, const char* interface, const char* method, const Read& read,
              const Write& write = {});
    std::optional<std::string> textProperty(const AccessibleObject& object, const char* interface, const char* name);
    void listenFor(const std::string& owner);

    std::unique_ptr<BusConnection> bus_;
    const Clock& clock_;
    Uptime deadline_;
    struct Silence {
        std::unique_ptr<sdbus::IProxy> asked; // the object of the question that lies there
        bool isOver = false;
    };
    std::map<std::string, Silence> silences_; // by owner
};

} // namespace kestrio
