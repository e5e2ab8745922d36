#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Platform/Linux/StatusNotifierTray.h"
#include "Tests/Platform/Linux/ServedBus.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/PrivateBus.h"

#include <gtest/gtest.h>
#include <mutex>

namespace kestrio {
namespace {

constexpr auto itemInterface = "org.kde.StatusNotifierItem";
constexpr auto menuInterface = "com.canonical.dbusmenu";

/// The watcher of icons, as a bar brings one along: remembers who announced themselves.
class Watcher {
public:
    explicit Watcher(const std::string& address, bool isPaused = false) : bus_(address) {
        object_ = sdbus::createObject(bus_.connection(), "/StatusNotifierWatcher");
        object_->registerMethod("RegisterStatusNotifierItem")
            .onInterface(name)
            .implementedAs([this](const std::string& service) {
                const std::scoped_lock lock(mutex_);
                announced_.push_back(service);
            });
        object_->finishRegistration();
        bus_.pause(isPaused);
        bus_.serve(name);
    }
    ~Watcher() {
        bus_.stop();
        object_.reset();
    }

    std::vector<std::string> announced() const {
        const std::scoped_lock lock(mutex_);
        return announced_;
    }
    void pause(bool isPaused) { bus_.pause(isPaused); }

private:
    static constexpr auto name = "org.kde.StatusNotifierWatcher";

    ServedBus bus_;
    std::unique_ptr<sdbus::IObject> object_;
    mutable std::mutex mutex_;
    std::vector<std::string> announced_; // guarded by the mutex
};

using Pixmaps = std::vector<sdbus::Struct<std::int32_t, std::int32_t, std::vector<std::uint8_t>>>;
using Properties = std::map<std::string, sdbus::Variant>;
using Layout = sdbus::Struct<std::int32_t, Properties, std::vector<sdbus::Variant>>;

/// The bar itself, which reads one icon, hears what it tells, and clicks.
class Bar {
public:
    Bar(const std::string& address, const std::string& service) : bus_(address) {
        item_ = sdbus::createProxy(bus_.connection(), service, "/StatusNotifierItem");
        for (const std::string signal : {"NewIcon", "NewTitle", "NewToolTip", "NewStatus"})
            item_->registerSignalHandler(itemInterface, signal, [this, signal](sdbus::Signal&) { note(signal); });
        item_->finishRegistration();
        menu_ = sdbus::createProxy(bus_.connection(), service, "/MenuBar");
        menu_->registerSignalHandler(menuInterface, "LayoutUpdated", [this](sdbus::Signal& signal) {
            std::uint32_t revision = 0;
            std::int32_t parent = -1;
            signal >> revision >> parent;
            note("LayoutUpdated " + std::to_string(revision) + " " + std::to_string(parent));
        });
        menu_->finishRegistration();
        bus_.serve("org.test.Bar");
        // From another thread than the one that serves, so over another connection.
        asking_ = sdbus::createSessionBusConnectionWithAddress(address);
        askItem_ = sdbus::createProxy(*asking_, service, "/StatusNotifierItem");
        askMenu_ = sdbus::createProxy(*asking_, service, "/MenuBar");
    }
    ~Bar() {
        bus_.stop();
        item_.reset();
        menu_.reset();
    }

    std::vector<std::string> heard() const {
        const std::scoped_lock lock(mutex_);
        return heard_;
    }
    template <class Value>
    Value property(const char* name) {
        return askItem_->getProperty(name).onInterface(itemInterface).get<Value>();
    }
    void click(const char* method, std::int32_t x, std::int32_t y) {
        askItem_->callMethod(method).onInterface(itemInterface).withArguments(x, y);
    }
    sdbus::IProxy& item() { return *askItem_; }
    sdbus::IProxy& menu() { return *askMenu_; }

    std::pair<std::uint32_t, Layout> layout(std::int32_t parent = 0, std::int32_t depth = -1,
                                            const std::vector<std::string>& names = {}) {
        std::uint32_t revision = 0;
        Layout found;
        menu()
            .callMethod("GetLayout")
            .onInterface(menuInterface)
            .withArguments(parent, depth, names)
            .storeResultsTo(revision, found);
        return {revision, found};
    }
    bool aboutToShow(std::int32_t number = 0) {
        bool isNew = false;
        menu().callMethod("AboutToShow").onInterface(menuInterface).withArguments(number).storeResultsTo(isNew);
        return isNew;
    }
    void event(std::int32_t number, const std::string& event) {
        menu()
            .callMethod("Event")
            .onInterface(menuInterface)
            .withArguments(number, event, sdbus::Variant(std::int32_t{0}), std::uint32_t{0});
    }

private:
    void note(const std::string& what) {
        const std::scoped_lock lock(mutex_);
        heard_.push_back(what);
    }

    ServedBus bus_;
    std::unique_ptr<sdbus::IProxy> item_;
    std::unique_ptr<sdbus::IProxy> menu_;
    std::unique_ptr<sdbus::IConnection> asking_;
    std::unique_ptr<sdbus::IProxy> askItem_;
    std::unique_ptr<sdbus::IProxy> askMenu_;
    mutable std::mutex mutex_;
    std::vector<std::string> heard_; // guarded by the mutex
};

/// As in "[Tracking]|-|Pause(30 minutes|1 hour)|Quit": words in brackets, choices as they are.
std::string drawn(const Layout& layout) {
    std::string text;
    for (const auto& child : layout.get<2>()) {
        const auto entry = child.get<Layout>();
        const auto& properties = entry.get<1>();
        const auto label = properties.contains("label") ? properties.at("label").get<std::string>() : std::string("-");
        const bool isEnabled = !properties.contains("enabled") || properties.at("enabled").get<bool>();
        text += (text.empty() ? "" : "|") + (isEnabled ? label : "[" + label + "]");
        if (properties.contains("children-display"))
            text += "(" + drawn(entry) + ")";
    }
    return text;
}

/// The number under which an entry of the top level stands.
std::int32_t numberOf(const Layout& layout, const std::string& label) {
    for (const auto& child : layout.get<2>()) {
        const auto entry = child.get<Layout>();
        if (entry.get<1>().contains("label") && entry.get<1>().at("label").get<std::string>() == label)
            return entry.get<0>();
    }
    return -1;
}

TrayPixmap pixmap(int side, std::uint32_t colour) {
    return {side, std::vector<std::uint32_t>(static_cast<std::size_t>(side * side), colour)};
}

TrayItem item(const std::string& id = "kestrio") {
    using Kind = TrayMenuEntry::Kind;
    return {id,
            "Kestrio",
            {"Today: 2h 5m", "Tracking"},
            "Active: your time is being recorded",
            {pixmap(22, 0x80112233), pixmap(48, 0xff00ff00)},
            {{Kind::words, "", "Tracking", {}},
             {Kind::separator, "", "", {}},
             {Kind::choice, "open", "Open_Dashboard", {}},
             {Kind::submenu, "", "Pause", {{Kind::choice, "pause", "1 hour", {}}, {Kind::choice, "ever", "Ever", {}}}},
             {Kind::choice, "quit", "Quit", {}}}};
}

struct StatusNotifierTrayTest : testing::Test {
    PrivateBus bus;
    WorkerQueue queue{"tray"};
    std::unique_ptr<StatusNotifierTray> tray;
    std::vector<TrayEvent> events; // on the queue
    std::function<void()> opening; // likewise: what is done before a menu shows
    Subscription token;

    void SetUp() override {
        queue.sync([this] {
            tray = std::make_unique<StatusNotifierTray>(queue, bus.address());
            token = tray->observe([this](const TrayEvent& event) {
                events.push_back(event);
                if (std::holds_alternative<TrayMenuOpening>(event) && opening)
                    opening();
            });
        });
    }
    ~StatusNotifierTrayTest() override {
        queue.sync([this] {
            token.cancel();
            tray.reset();
        });
    }

    void show(const TrayItem& shown) {
        queue.sync([&] { tray->show(shown); });
    }
    bool isShown() {
        return queue.sync([this] { return tray->isShown(); });
    }
    std::vector<TrayEvent> told() {
        return queue.sync([this] { return events; });
    }
    static std::string service(int number) {
        return "org.kde.StatusNotifierItem-" + std::to_string(getpid()) + "-" + std::to_string(number);
    }
    bool isAnnounced(const Watcher& watcher, const std::vector<std::string>& services) {
        return eventually([&] { return watcher.announced() == services && isShown(); });
    }
};

TEST_F(StatusNotifierTrayTest, anIconAnnouncesItselfToTheWatcherThatIsThere) {
    const Watcher watcher(bus.address());
    show(item());
    EXPECT_TRUE(isAnnounced(watcher, {service(1)}));
}

TEST_F(StatusNotifierTrayTest, anIconAnnouncesItselfToAWatcherThatAppearsLater) {
    show(item());
    EXPECT_FALSE(isShown());
    const Watcher watcher(bus.address());
    EXPECT_TRUE(isAnnounced(watcher, {service(1)}));
}

TEST_F(StatusNotifierTrayTest, anIconAnnouncesItselfAgainToAWatcherThatRestarts) {
    auto watcher = std::make_unique<Watcher>(bus.address());
    show(item());
    ASSERT_TRUE(isAnnounced(*watcher, {service(1)}));
    watcher.reset();
    EXPECT_TRUE(eventually([this] { return !isShown(); }));
    watcher = std::make_unique<Watcher>(bus.address());
    EXPECT_TRUE(isAnnounced(*watcher, {service(1)}));
}

TEST_F(StatusNotifierTrayTest, aWatcherThatHangsHoldsNobodyUp) {
    Watcher watcher(bus.address(), true);
    show(item());
    auto changed = item();
    changed.title = "Another";
    show(changed);
    EXPECT_FALSE(isShown());
    watcher.pause(false);
    EXPECT_TRUE(isAnnounced(watcher, {service(1)}));
}

TEST_F(StatusNotifierTrayTest, whatChangesBeforeTheWatcherAnswersIsToldThen) {
    Watcher watcher(bus.address(), true);
    show(item());
    const Bar bar(bus.address(), service(1));
    auto changed = item();
    changed.icon.pop_back();
    changed.menu.pop_back();
    show(changed);
    EXPECT_TRUE(bar.heard().empty());
    watcher.pause(false);
    EXPECT_TRUE(eventually([&] { return bar.heard() == std::vector<std::string>{"NewIcon", "LayoutUpdated 2 0"}; }));
}

TEST_F(StatusNotifierTrayTest, eachIconHasANameOfItsOwn) {
    const Watcher watcher(bus.address());
    show(item("kestrio"));
    show(item("kestrio-system"));
    EXPECT_TRUE(eventually([&] { return watcher.announced().size() == 2; }));
    EXPECT_EQ(Bar(bus.address(), service(1)).property<std::string>("Id"), "kestrio");
    EXPECT_EQ(Bar(bus.address(), service(2)).property<std::string>("Id"), "kestrio-system");
    queue.sync([this] { tray->remove("kestrio"); });
    EXPECT_THROW(Bar(bus.address(), service(1)).property<std::string>("Id"), sdbus::Error);
    EXPECT_EQ(Bar(bus.address(), service(2)).property<std::string>("Id"), "kestrio-system");
    show(item("kestrio"));
    EXPECT_TRUE(eventually([&] { return watcher.announced().size() == 3; }));
    EXPECT_EQ(watcher.announced().back(), service(3)) << "a name is never used twice";
}

TEST_F(StatusNotifierTrayTest, everyPropertyIsAsTheProtocolWantsIt) {
    show(item());
    Bar bar(bus.address(), service(1));
    EXPECT_EQ(bar.property<std::string>("Category"), "ApplicationStatus");
    EXPECT_EQ(bar.property<std::string>("Title"), "Kestrio");
    EXPECT_EQ(bar.property<std::string>("Status"), "Active");
    EXPECT_EQ(bar.property<std::string>("IconAccessibleDesc"), "Active: your time is being recorded");
    EXPECT_EQ(bar.property<std::string>("IconName"), "");
    EXPECT_EQ(bar.property<Pixmaps>("OverlayIconPixmap"), Pixmaps());
    EXPECT_FALSE(bar.property<bool>("ItemIsMenu"));
    EXPECT_EQ(bar.property<sdbus::ObjectPath>("Menu"), "/MenuBar");
    EXPECT_EQ(bar.property<std::int32_t>("WindowId"), 0);
    const auto tip = bar.property<sdbus::Struct<std::string, Pixmaps, std::string, std::string>>("ToolTip");
    EXPECT_EQ(tip.get<2>(), "Today: 2h 5m");
    EXPECT_EQ(tip.get<3>(), "Tracking");
}

TEST_F(StatusNotifierTrayTest, picturesAreInNetworkOrder) {
    show(item());
    const auto pixmaps = Bar(bus.address(), service(1)).property<Pixmaps>("IconPixmap");
    ASSERT_EQ(pixmaps.size(), 2U);
    EXPECT_EQ(pixmaps[0].get<0>(), 22);
    EXPECT_EQ(pixmaps[0].get<1>(), 22);
    const auto& bytes = pixmaps[0].get<2>();
    ASSERT_EQ(bytes.size(), 22U * 22U * 4U);
    EXPECT_EQ(std::vector<std::uint8_t>(bytes.begin(), bytes.begin() + 4),
              (std::vector<std::uint8_t>{0x80, 0x11, 0x22, 0x33}));
    EXPECT_EQ(pixmaps[1].get<2>().size(), 48U * 48U * 4U);
}

TEST_F(StatusNotifierTrayTest, barsAreToldOnlyWhatChanged) {
    const Watcher watcher(bus.address());
    auto shown = item();
    show(shown);
    ASSERT_TRUE(isAnnounced(watcher, {service(1)}));
    const Bar bar(bus.address(), service(1));
    const auto expect = [&](const std::vector<std::string>& signals) {
        show(shown);
        EXPECT_TRUE(eventually([&] { return bar.heard() == signals; }))
            << testing::PrintToString(bar.heard()) << " and not " << testing::PrintToString(signals);
    };
    expect({});
    shown.icon[0] = pixmap(22, 0xffffffff);
    expect({"NewIcon"});
    shown.tip.text = "Paused";
    expect({"NewIcon", "NewToolTip"});
    shown.title = "Kestrio: paused";
    expect({"NewIcon", "NewToolTip", "NewTitle"});
    shown.menu.pop_back();
    expect({"NewIcon", "NewToolTip", "NewTitle", "LayoutUpdated 2 0"});
    show(shown);
    shown.accessibleText = "Away";
    expect({"NewIcon", "NewToolTip", "NewTitle", "LayoutUpdated 2 0", "NewIcon"});
}

TEST_F(StatusNotifierTrayTest, nobodyIsToldAnythingWhileNoWatcherKnowsTheIcon) {
    show(item());
    const Bar bar(bus.address(), service(1));
    auto shown = item();
    shown.title = "Another";
    shown.menu.clear();
    shown.icon.clear();
    show(shown);
    const Watcher watcher(bus.address());
    ASSERT_TRUE(isAnnounced(watcher, {service(1)}));
    shown.tip.title = "Now";
    show(shown);
    EXPECT_TRUE(eventually([&] { return !bar.heard().empty(); }));
    EXPECT_EQ(bar.heard(), std::vector<std::string>{"NewToolTip"});
}

TEST_F(StatusNotifierTrayTest, clicksAreToldWithTheirPlace) {
    show(item());
    Bar bar(bus.address(), service(1));
    bar.click("Activate", 1250, 12);
    bar.item().callMethod("ProvideXdgActivationToken").onInterface(itemInterface).withArguments(std::string("token"));
    bar.click("SecondaryActivate", -5, 0);
    bar.click("ContextMenu", 7, 8);
    bar.item()
        .callMethod("Scroll")
        .onInterface(itemInterface)
        .withArguments(std::int32_t{120}, std::string("vertical"));
    using Button = TrayClick::Button;
    const std::vector<TrayEvent> expected{TrayClick{"kestrio", Button::primary, 1250, 12, ""},
                                          TrayClick{"kestrio", Button::secondary, -5, 0, "token"},
                                          TrayClick{"kestrio", Button::menu, 7, 8, ""}};
    EXPECT_TRUE(eventually([&] { return told() == expected; }));
}

TEST_F(StatusNotifierTrayTest, theMenuIsLaidOutWithItsWordsSubmenusAndSeparators) {
    show(item());
    Bar bar(bus.address(), service(1));
    const auto [revision, whole] = bar.layout();
    EXPECT_EQ(revision, 1U);
    EXPECT_EQ(drawn(whole), "[Tracking]|-|Open__Dashboard|Pause(1 hour|Ever)|Quit");
    EXPECT_EQ(drawn(bar.layout(0, 1).second), "[Tracking]|-|Open__Dashboard|Pause()|Quit");
    EXPECT_EQ(drawn(bar.layout(0, 0).second), "");
    const auto pause = numberOf(whole, "Pause");
    EXPECT_EQ(drawn(bar.layout(pause).second), "1 hour|Ever");
    EXPECT_THROW(bar.layout(4711), sdbus::Error);
    // Only the properties that were asked for.
    const auto plain = bar.layout(0, -1, {"type"}).second;
    EXPECT_TRUE(plain.get<2>()[0].get<Layout>().get<1>().empty());
    EXPECT_EQ(plain.get<2>()[1].get<Layout>().get<1>().at("type").get<std::string>(), "separator");
}

TEST_F(StatusNotifierTrayTest, propertiesOfEntriesCanBeAskedForAlone) {
    show(item());
    Bar bar(bus.address(), service(1));
    const auto quit = numberOf(bar.layout().second, "Quit");
    std::vector<sdbus::Struct<std::int32_t, Properties>> groups;
    bar.menu()
        .callMethod("GetGroupProperties")
        .onInterface(menuInterface)
        .withArguments(std::vector<std::int32_t>{quit, 4711}, std::vector<std::string>{})
        .storeResultsTo(groups);
    ASSERT_EQ(groups.size(), 1U);
    EXPECT_EQ(groups[0].get<0>(), quit);
    EXPECT_EQ(groups[0].get<1>().at("label").get<std::string>(), "Quit");
    groups.clear();
    bar.menu()
        .callMethod("GetGroupProperties")
        .onInterface(menuInterface)
        .withArguments(std::vector<std::int32_t>{}, std::vector<std::string>{"label"})
        .storeResultsTo(groups);
    EXPECT_EQ(groups.size(), 8U) << "all, and the menu as a whole";
    sdbus::Variant label;
    bar.menu()
        .callMethod("GetProperty")
        .onInterface(menuInterface)
        .withArguments(quit, std::string("label"))
        .storeResultsTo(label);
    EXPECT_EQ(label.get<std::string>(), "Quit");
    EXPECT_THROW(
        bar.menu().callMethod("GetProperty").onInterface(menuInterface).withArguments(quit, std::string("colour")),
        sdbus::Error);
    EXPECT_EQ(bar.menu().getProperty("Version").onInterface(menuInterface).get<std::uint32_t>(), 3U);
}

TEST_F(StatusNotifierTrayTest, aChoiceIsToldAndWordsAreNone) {
    show(item());
    Bar bar(bus.address(), service(1));
    const auto whole = bar.layout().second;
    bar.event(numberOf(whole, "Tracking"), "clicked");
    bar.event(numberOf(whole, "Pause"), "clicked");
    bar.event(0, "clicked");
    bar.event(numberOf(whole, "Quit"), "hovered");
    EXPECT_THROW(bar.event(4711, "clicked"), sdbus::Error);
    bar.event(numberOf(bar.layout(numberOf(whole, "Pause")).second, "Ever"), "clicked");
    std::vector<std::int32_t> unknown;
    using Event = sdbus::Struct<std::int32_t, std::string, sdbus::Variant, std::uint32_t>;
    const auto clicked = [](std::int32_t number) {
        return Event(std::tuple(number, std::string("clicked"), sdbus::Variant(std::int32_t{0}), std::uint32_t{0}));
    };
    bar.menu()
        .callMethod("EventGroup")
        .onInterface(menuInterface)
        .withArguments(std::vector<Event>{clicked(4711), clicked(numberOf(whole, "Quit"))})
        .storeResultsTo(unknown);
    EXPECT_EQ(unknown, std::vector<std::int32_t>{4711});
    const std::vector<TrayEvent> expected{TrayChoice{"kestrio", "ever", ""}, TrayChoice{"kestrio", "quit", ""}};
    EXPECT_TRUE(eventually([&] { return told() == expected; })) << told().size();
}

TEST_F(StatusNotifierTrayTest, aChoiceKeepsItsNumberHoweverTheMenuChanges) {
    auto shown = item();
    show(shown);
    Bar bar(bus.address(), service(1));
    const auto quit = numberOf(bar.layout().second, "Quit");
    const auto open = numberOf(bar.layout().second, "Open__Dashboard");
    std::swap(shown.menu[2], shown.menu[4]);
    shown.menu[2].text = "Leave";
    shown.menu.insert(shown.menu.begin(), {TrayMenuEntry::Kind::choice, "new", "New", {}});
    show(shown);
    EXPECT_EQ(numberOf(bar.layout().second, "Leave"), quit);
    EXPECT_EQ(numberOf(bar.layout().second, "Open__Dashboard"), open);
    shown.menu.erase(shown.menu.begin() + 3);
    show(shown);
    EXPECT_EQ(bar.layout().first, 3U);
    EXPECT_THROW(bar.event(quit, "clicked"), sdbus::Error) << "an entry that is gone";
}

TEST_F(StatusNotifierTrayTest, whatAMenuSaysMayBeFoundOnlyAsItOpens) {
    show(item());
    Bar bar(bus.address(), service(1));
    EXPECT_FALSE(bar.aboutToShow()) << "nothing was done to it";
    queue.sync([this] {
        opening = [this] {
            auto fresh = item();
            fresh.menu[0].text = "Paused until " + std::to_string(events.size());
            tray->show(fresh);
        };
    });
    EXPECT_TRUE(bar.aboutToShow());
    EXPECT_EQ(drawn(bar.layout().second).substr(0, 16), "[Paused until 2]");
    EXPECT_FALSE(bar.aboutToShow(numberOf(bar.layout().second, "Pause"))) << "the menus below are there already";
    EXPECT_THROW(bar.aboutToShow(4711), sdbus::Error);
    std::vector<std::int32_t> changed;
    std::vector<std::int32_t> unknown;
    bar.menu()
        .callMethod("AboutToShowGroup")
        .onInterface(menuInterface)
        .withArguments(std::vector<std::int32_t>{0, 4711})
        .storeResultsTo(changed, unknown);
    EXPECT_EQ(changed, std::vector<std::int32_t>{0});
    EXPECT_EQ(unknown, std::vector<std::int32_t>{4711});
}

TEST_F(StatusNotifierTrayTest, aBusThatDiesIsNobodysTrouble) {
    const auto watcher = std::make_unique<Watcher>(bus.address());
    show(item());
    ASSERT_TRUE(isAnnounced(*watcher, {service(1)}));
    bus.kill();
    auto shown = item();
    shown.title = "Another";
    show(shown);
    queue.sync([this] { tray->remove("kestrio"); });
    show(shown);
}

TEST(StatusNotifierTray, withoutABusNothingIsShown) {
    WorkerQueue queue("tray");
    queue.sync([&] {
        StatusNotifierTray tray(queue, "unix:path=/nonexistent/bus");
        tray.show(item());
        tray.show(item("kestrio-system"));
        tray.remove("kestrio");
        EXPECT_FALSE(tray.isShown());
    });
}

} // namespace
} // namespace kestrio
