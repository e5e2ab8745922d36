#include "Kestrio/Platform/Linux/StatusNotifierItem.h"

#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Platform/Linux/BusConnection.h"
#include "Kestrio/Platform/Linux/TrayPixmapsOnBus.h"

#include <fmt/format.h>
#include <unistd.h>
#include <utility>

namespace kestrio {
namespace {

constexpr auto interface = "org.kde.StatusNotifierItem";
constexpr auto path = "/StatusNotifierItem";
constexpr auto watcherName = "org.kde.StatusNotifierWatcher";
constexpr auto watcherPath = "/StatusNotifierWatcher";

/// Nobody waits for the watcher's answer, so one that is just starting may take its time.
constexpr std::chrono::seconds patience{25};

/// A picture, pictures, a title and a text.
using ToolTip = sdbus::Struct<std::string, TrayPixmapsOnBus, std::string, std::string>;

} // namespace

StatusNotifierItem::StatusNotifierItem(LoopQueue& queue, const std::string& busAddress, int number, TrayItem item,
                                       Receiver receiver)
    : queue_(queue),
      item_(std::move(item)),
      receiver_(std::move(receiver)),
      name_(fmt::format("{}-{}-{}", interface, getpid(), number)),
      bus_(BusConnection::open(queue, busAddress)) {
    if (bus_ && offer(name_) && observeWatcher())
        announce();
}

StatusNotifierItem::~StatusNotifierItem() = default;

bool StatusNotifierItem::offer(const std::string& name) {
    return bus_->perform([&](sdbus::IConnection& connection) {
        menu_ =
            std::make_unique<TrayMenu>(connection, item_.menu,
                                       TrayMenu::Receiver{.chosen =
                                                              [this](const std::string& entry) {
                                                                  later(TrayChoice{item_.id, entry, takeToken()});
                                                              },
                                                          .opening = [this] { receiver_(TrayMenuOpening{item_.id}); }});
        object_ = sdbus::createObject(connection, path);
        registerMethods();
        registerProperties();
        object_->finishRegistration();
        connection.requestName(name);
    });
}

void StatusNotifierItem::registerMethods() {
    using Button = TrayClick::Button;
    for (const auto& [method, button] :
         {std::pair("Activate", Button::primary), std::pair("SecondaryActivate", Button::secondary),
          std::pair("ContextMenu", Button::menu)})
        object_->registerMethod(method).onInterface(interface).withInputParamNames("x", "y").implementedAs(
            [this, button = button](std::int32_t x, std::int32_t y) { click(button, x, y); });
    object_->registerMethod("Scroll")
        .onInterface(interface)
        .withInputParamNames("delta", "orientation")
        .implementedAs([](std::int32_t, const std::string&) {}); // nothing here turns
    object_->registerMethod("ProvideXdgActivationToken")
        .onInterface(interface)
        .withInputParamNames("token")
        .implementedAs([this](const std::string& token) { activationToken_ = token; });
}

void StatusNotifierItem::registerProperties() {
    const auto text = [this](const char* name, auto value) {
        object_->registerProperty(name).onInterface(interface).withGetter(
            [value = std::move(value)] { return std::string(value()); });
    };
    const auto pictures = [this](const char* name, const std::vector<TrayPixmap>* pixmaps) {
        object_->registerProperty(name).onInterface(interface).withGetter(
            [pixmaps] { return TrayPixmapsOnBus{pixmaps}; });
    };
    text("Category", [] { return "ApplicationStatus"; });
    text("Id", [this] { return item_.id; });
    text("Title", [this] { return item_.title; });
    text("Status", [] { return "Active"; });
    text("IconAccessibleDesc", [this] { return item_.accessibleText; });
    pictures("IconPixmap", &item_.icon);
    // Bars ask for these too.
    for (const char* name : {"IconName", "IconThemePath", "OverlayIconName", "AttentionIconName", "AttentionMovieName"})
        text(name, [] { return ""; });
    for (const char* name : {"OverlayIconPixmap", "AttentionIconPixmap"})
        pictures(name, nullptr);
    object_->registerProperty("ToolTip").onInterface(interface).withGetter([this] {
        return ToolTip(std::tuple(std::string(), TrayPixmapsOnBus{nullptr}, item_.tip.title, item_.tip.text));
    });
    object_->registerProperty("WindowId").onInterface(interface).withGetter([] { return std::int32_t{0}; });
    object_->registerProperty("ItemIsMenu").onInterface(interface).withGetter([] { return false; });
    object_->registerProperty("Menu").onInterface(interface).withGetter(
        [] { return sdbus::ObjectPath(TrayMenu::path); });
    for (const char* signal : {"NewTitle", "NewIcon", "NewToolTip", "NewAttentionIcon", "NewOverlayIcon"})
        object_->registerSignal(signal).onInterface(interface);
    object_->registerSignal("NewStatus").onInterface(interface).withParameters<std::string>();
}

void StatusNotifierItem::show(const TrayItem& item) {
    const auto before = std::exchange(item_, item);
    if (!menu_)
        return;
    menu_->set(item_.menu);
    if (isShown_)
        tellChanges(before);
}

void StatusNotifierItem::tellChanges(const TrayItem& before) {
    if (item_.icon != before.icon || item_.accessibleText != before.accessibleText)
        tell("NewIcon");
    if (item_.title != before.title)
        tell("NewTitle");
    if (item_.tip != before.tip)
        tell("NewToolTip");
    if (item_.menu != before.menu)
        bus_->perform([this](sdbus::IConnection&) { menu_->tell(); });
}

void StatusNotifierItem::tell(const char* signal) {
    bus_->perform([&](sdbus::IConnection&) { object_->emitSignal(signal).onInterface(interface); });
}

bool StatusNotifierItem::observeWatcher() {
    auto watching = bus_->match(fmt::format("type='signal',sender='org.freedesktop.DBus',"
                                            "interface='org.freedesktop.DBus',member='NameOwnerChanged',arg0='{}'",
                                            watcherName),
                                [this](sdbus::Message& message) { watcherChanged(message); });
    if (!watching)
        return false;
    watching_ = std::move(*watching);
    watcher_ = sdbus::createProxy(bus_->connection(), watcherName, watcherPath);
    return true;
}

void StatusNotifierItem::watcherChanged(sdbus::Message& message) {
    std::string name;
    std::string before;
    std::string now;
    message >> name >> before >> now;
    isShown_ = false;
    if (!now.empty())
        announce();
}

/// Does not wait. Where there is no watcher the bus says so at once.
void StatusNotifierItem::announce() {
    bus_->perform([this](sdbus::IConnection&) {
        watcher_->callMethodAsync("RegisterStatusNotifierItem")
            .onInterface(watcherName)
            .withTimeout(patience)
            .withArguments(name_)
            .uponReplyInvoke([this, before = item_](const sdbus::Error* error) {
                isShown_ = error == nullptr;
                if (isShown_)
                    tellChanges(before); // bars may have read it before the watcher answered
            });
    });
}

void StatusNotifierItem::click(TrayClick::Button button, int x, int y) {
    later(TrayClick{item_.id, button, x, y, takeToken()});
}

std::string StatusNotifierItem::takeToken() {
    return std::exchange(activationToken_, {});
}

/// After the bus has its answer: what the receiver does may take a moment, or end the program.
void StatusNotifierItem::later(TrayEvent event) {
    queue_.async([weak = std::weak_ptr(self_), event = std::move(event)] {
        if (const auto self = weak.lock())
            (*self)->receiver_(event);
    });
}

} // namespace kestrio
