#include "Kestrio/Platform/Linux/AccessibilityBus.h"

#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Base/Text.h"

#include <algorithm>
#include <sdbus-c++/sdbus-c++.h>
#include <system_error>

namespace kestrio {
namespace {

constexpr const char* accessible = "org.a11y.atspi.Accessible";
constexpr const char* application = "org.a11y.atspi.Application";
constexpr const char* component = "org.a11y.atspi.Component";
constexpr const char* document = "org.a11y.atspi.Document";
constexpr const char* properties = "org.freedesktop.DBus.Properties";
constexpr const char* rootPath = "/org/a11y/atspi/accessible/root";
const AccessibleObject registryRoot{"org.a11y.atspi.Registry", rootPath};
const AccessibleObject daemon{"org.freedesktop.DBus", "/org/freedesktop/DBus"};

constexpr std::uint32_t embeds = 13;           // the number of the relation
constexpr std::uint32_t screenCoordinates = 0; // what extents are measured from

constexpr std::size_t mostObjects = 2048;
constexpr std::size_t mostAttributes = 256;
constexpr std::size_t longestText = 16 * 1024;

/// How long the question lies with a silent owner before it is put again.
constexpr std::chrono::minutes lying{30};

using ObjectStruct = sdbus::Struct<std::string, sdbus::ObjectPath>;

std::string bounded(const std::string& text) {
    auto end = std::min(text.size(), longestText);
    while (end > 0 && end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end; // not through the middle of a character
    return text::fromUntrustedBytes(std::string_view(text).substr(0, end));
}

/// The elements of an array up to a bound; what follows is not read, here or later.
template <class Element, class Take>
void readArray(sdbus::Message& message, std::size_t most, Take take) {
    if (!message.enterContainer(sdbus::signature_of<Element>::str()))
        return;
    for (std::size_t count = 0; count < most; ++count) {
        Element element;
        if (!(message >> element))
            break;
        take(std::move(element));
    }
    message.clearFlags();
}

std::vector<AccessibleObject> readObjects(sdbus::Message& message) {
    std::vector<AccessibleObject> objects;
    readArray<ObjectStruct>(message, mostObjects, [&](ObjectStruct element) {
        objects.push_back({std::get<0>(element), std::get<1>(element)});
    });
    return objects;
}

AccessibilityBus::Attributes readAttributes(sdbus::Message& message) {
    AccessibilityBus::Attributes attributes;
    if (!message.enterContainer("{ss}"))
        return attributes;
    for (std::size_t count = 0; count < mostAttributes && message.enterDictEntry("ss"); ++count) {
        std::string key;
        std::string value;
        message >> key >> value;
        message.exitDictEntry();
        attributes.emplace(bounded(key), bounded(value));
    }
    message.clearFlags();
    return attributes;
}

bool hasOwner(BusConnection& bus, const std::string& name) {
    bool owned = false;
    return bus.perform([&](sdbus::IConnection& connection) {
        const auto proxy = sdbus::createProxy(connection, daemon.owner, daemon.path);
        proxy->callMethod("NameHasOwner").onInterface("org.freedesktop.DBus").withArguments(name).storeResultsTo(owned);
    }) && owned;
}

/// Whether the accessibility bus runs: asking its launcher for the address of one that does not would start it.
bool isRunning(sdbus::IProxy& launcher, const std::filesystem::path& runtime) {
    const sdbus::Variant isEnabled = launcher.getProperty("IsEnabled").onInterface("org.a11y.Status");
    std::error_code error;
    return isEnabled.get<bool>() ||
           (!runtime.empty() && !std::filesystem::is_empty(runtime / "at-spi", error) && !error);
}

std::optional<std::string> accessibilityAddress(BusConnection& session, const std::filesystem::path& runtime) {
    std::string address;
    if (!hasOwner(session, "org.a11y.Bus"))
        return std::nullopt;
    const bool told = session.perform([&](sdbus::IConnection& connection) {
        const auto launcher = sdbus::createProxy(connection, "org.a11y.Bus", "/org/a11y/bus");
        if (isRunning(*launcher, runtime))
            launcher->callMethod("GetAddress").onInterface("org.a11y.Bus").storeResultsTo(address);
    });
    return told && !address.empty() ? std::optional(address) : std::nullopt;
}

} // namespace

std::unique_ptr<AccessibilityBus> AccessibilityBus::open(LoopQueue& queue, const Clock& clock,
                                                         const std::string& sessionBus,
                                                         const std::filesystem::path& runtime) {
    const auto session = BusConnection::open(queue, sessionBus);
    const auto address = session ? accessibilityAddress(*session, runtime) : std::nullopt;
    auto bus = address ? BusConnection::open(queue, *address) : nullptr;
    return bus ? std::unique_ptr<AccessibilityBus>(new AccessibilityBus(std::move(bus), clock)) : nullptr;
}

AccessibilityBus::AccessibilityBus(std::unique_ptr<BusConnection> bus, const Clock& clock)
    : bus_(std::move(bus)), clock_(clock) {}

AccessibilityBus::~AccessibilityBus() = default;

void AccessibilityBus::allow(Seconds span) {
    std::erase_if(silences_, [](const auto& entry) { return entry.second.isOver; });
    deadline_ = clock_.uptime() + span;
}

bool AccessibilityBus::isSilent(const std::string& owner) const {
    const auto found = silences_.find(owner);
    return found != silences_.end() && !found->second.isOver;
}

std::optional<std::vector<AccessibleObject>> AccessibilityBus::applications() {
    return children(registryRoot);
}

std::optional<pid_t> AccessibilityBus::process(const std::string& owner) {
    std::optional<pid_t> process;
    call(
        daemon, "org.freedesktop.DBus", "GetConnectionUnixProcessID",
        [&](sdbus::MethodReply& reply) {
            std::uint32_t number = 0;
            reply >> number;
            if (static_cast<pid_t>(number) > 0)
                process = static_cast<pid_t>(number);
        },
        [&](sdbus::MethodCall& message) { message << owner; });
    return process;
}

std::optional<std::vector<AccessibleObject>> AccessibilityBus::children(const AccessibleObject& object) {
    std::optional<std::vector<AccessibleObject>> objects;
    call(object, accessible, "GetChildren", [&](sdbus::MethodReply& reply) { objects = readObjects(reply); });
    return objects;
}

std::optional<std::string> AccessibilityBus::name(const AccessibleObject& object) {
    return textProperty(object, accessible, "Name");
}

std::optional<std::string> AccessibilityBus::toolkit(const AccessibleObject& root) {
    return textProperty(root, application, "ToolkitName");
}

std::optional<std::uint32_t> AccessibilityBus::role(const AccessibleObject& object) {
    std::optional<std::uint32_t> role;
    call(object, accessible, "GetRole", [&](sdbus::MethodReply& reply) {
        std::uint32_t number = 0;
        reply >> number;
        role = number;
    });
    return role;
}

std::optional<std::uint64_t> AccessibilityBus::states(const AccessibleObject& object) {
    std::optional<std::uint64_t> states;
    call(object, accessible, "GetState", [&](sdbus::MethodReply& reply) {
        std::vector<std::uint32_t> words;
        readArray<std::uint32_t>(reply, 2, [&](std::uint32_t word) { words.push_back(word); });
        words.resize(2);
        states = words[0] | static_cast<std::uint64_t>(words[1]) << 32;
    });
    return states;
}

std::optional<AccessibilityBus::Attributes> AccessibilityBus::attributes(const AccessibleObject& object) {
    std::optional<Attributes> attributes;
    call(object, accessible, "GetAttributes", [&](sdbus::MethodReply& reply) { attributes = readAttributes(reply); });
    return attributes;
}

std::optional<AccessibilityBus::Attributes> AccessibilityBus::documentAttributes(const AccessibleObject& object) {
    std::optional<Attributes> attributes;
    call(object, document, "GetAttributes", [&](sdbus::MethodReply& reply) { attributes = readAttributes(reply); });
    return attributes;
}

std::optional<Rectangle> AccessibilityBus::extents(const AccessibleObject& object) {
    std::optional<Rectangle> extents;
    call(
        object, component, "GetExtents",
        [&](sdbus::MethodReply& reply) {
            sdbus::Struct<std::int32_t, std::int32_t, std::int32_t, std::int32_t> sides;
            reply >> sides;
            extents = Rectangle{static_cast<double>(std::get<0>(sides)), static_cast<double>(std::get<1>(sides)),
                                static_cast<double>(std::get<2>(sides)), static_cast<double>(std::get<3>(sides))};
        },
        [](sdbus::MethodCall& message) { message << screenCoordinates; });
    return extents;
}

std::optional<std::vector<AccessibleObject>> AccessibilityBus::embedded(const AccessibleObject& frame) {
    using Relation = sdbus::Struct<std::uint32_t, std::vector<ObjectStruct>>;
    std::optional<std::vector<AccessibleObject>> objects;
    call(frame, accessible, "GetRelationSet", [&](sdbus::MethodReply& reply) {
        objects.emplace();
        readArray<Relation>(reply, mostAttributes, [&](const Relation& relation) {
            if (std::get<0>(relation) != embeds)
                return;
            for (const auto& target : std::get<1>(relation))
                if (objects->size() < mostObjects)
                    objects->push_back({std::get<0>(target), std::get<1>(target)});
        });
    });
    return objects;
}

std::optional<std::string> AccessibilityBus::textProperty(const AccessibleObject& object, const char* interface,
                                                          const char* property) {
    std::optional<std::string> text;
    call(
        object, properties, "Get",
        [&](sdbus::MethodReply& reply) {
            sdbus::Variant value;
            reply >> value;
            text = bounded(value.get<std::string>());
        },
        [&](sdbus::MethodCall& message) { message << std::string(interface) << std::string(property); });
    return text;
}

bool AccessibilityBus::call(const AccessibleObject& object, const char* interface, const char* method, const Read& read,
                            const Write& write) {
    const auto patience = std::chrono::duration_cast<std::chrono::microseconds>(left());
    if (patience.count() <= 0 || isSilent(object.owner))
        return false;
    const bool worked = bus_->perform([&](sdbus::IConnection& connection) {
        const auto proxy = sdbus::createProxy(connection, object.owner, object.path);
        auto message = proxy->createMethodCall(interface, method);
        if (write)
            write(message);
        auto reply = proxy->callMethod(message, patience);
        read(reply);
    });
    if (!worked && bus_->isAlive() && left() <= Seconds(0))
        listenFor(object.owner);
    return worked;
}

void AccessibilityBus::listenFor(const std::string& owner) {
    bus_->perform([&](sdbus::IConnection& connection) {
        auto proxy = sdbus::createProxy(connection, owner, owner == daemon.owner ? daemon.path : rootPath);
        const auto message = proxy->createMethodCall(accessible, "GetRole");
        proxy->callMethod(
            message,
            // An error is an answer too: it knows nothing of the question, or it died. The object goes later, for it
            // must outlast this.
            [this, owner](sdbus::MethodReply&, const sdbus::Error*) { silences_[owner].isOver = true; }, lying);
        silences_[owner] = {std::move(proxy)};
    });
}

} // namespace kestrio
