// Seam: small icons in the desktop's bar, each with a tip, a menu, and a click that says where it was.
//
// Used on one queue, the one that the implementation was made for; nothing waits for more than 0.4 s. A desktop without
// a place for icons is normal: whatever is handed over is then kept, and shown when such a place appears.
#pragma once

#include "Kestrio/Base/Subscription.h"

#include <cstdint>
#include <functional>
#include <string>
#include <variant>
#include <vector>

namespace kestrio {

/// A square picture. Bars take the size that suits them best.
struct TrayPixmap {
    int side = 0;                      // in pixels
    std::vector<std::uint32_t> pixels; // row by row, 0xAARRGGBB, the colours not multiplied with the alpha

    friend bool operator==(const TrayPixmap&, const TrayPixmap&) = default;
};

struct TrayMenuEntry {
    enum class Kind {
        choice,    // tells its `id` when it is chosen
        words,     // only says something
        separator, // between groups
        submenu,   // opens `entries`
    };
    Kind kind = Kind::choice;
    std::string id;
    std::string text;
    std::vector<TrayMenuEntry> entries;

    friend bool operator==(const TrayMenuEntry&, const TrayMenuEntry&) = default;
};

struct TrayItem {
    std::string id; // by which the desktop remembers where the person put it
    std::string title;
    struct Tip { // shown while the pointer rests on it
        std::string title;
        std::string text;
        friend bool operator==(const Tip&, const Tip&) = default;
    };
    Tip tip;
    std::string accessibleText; // what the picture says, for those who do not see it
    std::vector<TrayPixmap> icon;
    std::vector<TrayMenuEntry> menu;

    friend bool operator==(const TrayItem&, const TrayItem&) = default;
};

/// A click on the icon itself, in the pixels of all screens together. `menu` is one that wants a menu on a desktop
/// that leaves showing it to the program.
struct TrayClick {
    enum class Button { primary, secondary, menu };
    std::string item;
    Button button = Button::primary;
    int x = 0;
    int y = 0;
    std::string activationToken; // the desktop's leave to take the front; empty where it gave none

    friend bool operator==(const TrayClick&, const TrayClick&) = default;
};

/// An entry of the menu was chosen.
struct TrayChoice {
    std::string item;
    std::string entry;
    std::string activationToken;

    friend bool operator==(const TrayChoice&, const TrayChoice&) = default;
};

/// The menu is about to be shown: the last moment to say what stands in it.
struct TrayMenuOpening {
    std::string item;

    friend bool operator==(const TrayMenuOpening&, const TrayMenuOpening&) = default;
};

using TrayEvent = std::variant<TrayClick, TrayChoice, TrayMenuOpening>;

class Tray {
public:
    virtual ~Tray() = default;

    /// Adds the item, or brings it up to date. One that is equal to what was shown costs nothing.
    virtual void show(const TrayItem& item) = 0;
    virtual void remove(const std::string& id) = 0;

    /// Whether some bar shows what is handed over.
    virtual bool isShown() const = 0;

    /// `receiver` is called on the owning queue. Within `TrayMenuOpening` it may show the item anew.
    virtual Subscription observe(std::function<void(const TrayEvent&)> receiver) = 0;
};

} // namespace kestrio
