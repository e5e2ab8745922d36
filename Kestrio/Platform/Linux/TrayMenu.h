// The menu of a tray icon on the bus, in the protocol com.canonical.dbusmenu: the bar draws it, and says what was
// chosen.
//
// Belongs to the queue of the connection. Numbers stand for entries on the bus; a choice keeps its number for as long
// as the menu lives, so that a click on a menu that has just changed never means another entry.
#pragma once

#include "Kestrio/Platform/Tray.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace sdbus {
class IConnection;
class IObject;
} // namespace sdbus

namespace kestrio {

class TrayMenu {
public:
    static constexpr auto path = "/MenuBar";

    struct Receiver {
        std::function<void(const std::string& entry)> chosen;
        /// The bar is about to show the menu, and waits for what this does to it.
        std::function<void()> opening;
    };

    /// Throws what the bus library throws. The connection must outlive the menu.
    TrayMenu(sdbus::IConnection& connection, std::vector<TrayMenuEntry> entries, Receiver receiver);
    ~TrayMenu();

    /// Where that changes anything, the bars are then to be told.
    void set(std::vector<TrayMenuEntry> entries);

    /// Tells the bars that the menu changed. Throws what the bus library throws.
    void tell();

private:
    using Number = std::int32_t;
    struct Node {
        const TrayMenuEntry* entry = nullptr; // null for the menu as a whole
        std::vector<Number> below = {};
    };

    void registerObject(sdbus::IConnection& connection);
    void number(const std::vector<TrayMenuEntry>& entries, Number parent, const std::string& place);
    const Node& node(Number number) const;
    bool isOpening(Number number);
    void happened(Number number, const std::string& event);

    const Receiver receiver_;
    std::vector<TrayMenuEntry> entries_;
    std::uint32_t revision_ = 0;
    std::map<std::string, Number> numbers_; // ever given, by what they stand for
    std::map<Number, Node> nodes_;          // as the menu stands now
    std::unique_ptr<sdbus::IObject> object_;
};

} // namespace kestrio
