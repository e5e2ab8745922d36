#include "Kestrio/Base/LoopQueue.h"
#include "Kestrio/Platform/Linux/BusConnection.h"
#include "Kestrio/Platform/Linux/PortalAppearance.h"
#include "Tests/Platform/Linux/ServedBus.h"
#include "Tests/Support/Eventually.h"
#include "Tests/Support/PrivateBus.h"

#include <gtest/gtest.h>
#include <map>
#include <mutex>
#include <sdbus-c++/sdbus-c++.h>
#include <vector>

namespace kestrio {
namespace {

using Values = std::map<std::string, std::map<std::string, sdbus::Variant>>;
constexpr auto settings = "org.freedesktop.portal.Settings";
constexpr auto common = "org.freedesktop.appearance";
constexpr auto gnome = "org.gnome.desktop.interface";

/// The settings of a desktop's portal.
class Portal {
public:
    Portal(const std::string& address, Values values) : values_(std::move(values)), bus_(address) {
        object_ = sdbus::createObject(bus_.connection(), "/org/freedesktop/portal/desktop");
        object_->registerMethod("ReadAll").onInterface(settings).implementedAs(
            [this](const std::vector<std::string>& spaces) {
                const std::lock_guard guard(mutex_);
                asked_ = spaces;
                return values_;
            });
        object_->registerSignal("SettingChanged")
            .onInterface(settings)
            .withParameters<std::string, std::string, sdbus::Variant>();
        object_->finishRegistration();
        bus_.serve("org.freedesktop.portal.Desktop");
    }
    ~Portal() {
        bus_.stop();
        object_.reset();
    }
    Portal(const Portal&) = delete;
    Portal& operator=(const Portal&) = delete;

    void change(const char* space, const char* key, sdbus::Variant value) {
        {
            const std::lock_guard guard(mutex_);
            values_[space][key] = value;
        }
        object_->emitSignal("SettingChanged")
            .onInterface(settings)
            .withArguments(std::string(space), std::string(key), value);
    }
    std::vector<std::string> asked() {
        const std::lock_guard guard(mutex_);
        return asked_;
    }

private:
    std::mutex mutex_;
    Values values_;
    std::vector<std::string> asked_;
    ServedBus bus_;
    std::unique_ptr<sdbus::IObject> object_;
};

Values scheme(std::uint32_t value) {
    return {{common, {{"color-scheme", sdbus::Variant(value)}}}};
}

struct PortalAppearanceTest : testing::Test {
    PrivateBus bus;
    WorkerQueue queue{"bus"};
    std::unique_ptr<BusConnection> connection =
        queue.sync([this] { return BusConnection::open(queue, bus.address()); });
    std::unique_ptr<PortalAppearance> appearance;
    std::mutex mutex;
    std::vector<DesktopAppearance> told;

    ~PortalAppearanceTest() override {
        queue.sync([this] {
            appearance.reset();
            connection.reset();
        });
    }
    void watch() {
        queue.sync([this] {
            appearance = std::make_unique<PortalAppearance>(*connection, [this](const DesktopAppearance& now) {
                const std::lock_guard guard(mutex);
                told.push_back(now);
            });
        });
    }
    bool becomes(const DesktopAppearance& expected) {
        return eventually([&] {
            const std::lock_guard guard(mutex);
            return !told.empty() && told.back() == expected;
        });
    }
    std::size_t count() {
        queue.sync([] {});
        const std::lock_guard guard(mutex);
        return told.size();
    }
};

TEST_F(PortalAppearanceTest, tellsNothingWithoutAPortal) {
    watch();
    EXPECT_EQ(count(), 0U);
}

TEST_F(PortalAppearanceTest, readsWhatTheDesktopPrefers) {
    const struct {
        std::uint32_t scheme;
        std::optional<bool> isDark;
    } rows[] = {{0, std::nullopt}, {1, true}, {2, false}, {7, std::nullopt}};
    for (const auto& row : rows) {
        Portal portal(bus.address(), scheme(row.scheme));
        watch();
        EXPECT_TRUE(becomes({.isDark = row.isDark})) << row.scheme;
        EXPECT_EQ(portal.asked(), (std::vector<std::string>{common, gnome}));
        queue.sync([this] { appearance.reset(); });
    }
}

TEST_F(PortalAppearanceTest, readsContrastMotionAndTheSizeOfText) {
    const Portal portal(
        bus.address(),
        {{common, {{"contrast", sdbus::Variant(std::uint32_t{1})}}},
         {gnome, {{"enable-animations", sdbus::Variant(false)}, {"text-scaling-factor", sdbus::Variant(1.25)}}}});
    watch();
    EXPECT_TRUE(becomes({.isHighContrast = true, .reducesMotion = true, .textScale = 1.25}));
}

TEST_F(PortalAppearanceTest, followsChangesAndTellsNoneTwice) {
    Portal portal(bus.address(), scheme(2));
    watch();
    ASSERT_TRUE(becomes({.isDark = false}));
    portal.change(gnome, "clock-format", sdbus::Variant(std::string("24h")));
    portal.change(common, "color-scheme", sdbus::Variant(std::uint32_t{1}));
    EXPECT_TRUE(becomes({.isDark = true}));
    portal.change(common, "reduced-motion", sdbus::Variant(std::uint32_t{1}));
    EXPECT_TRUE(becomes({.isDark = true, .reducesMotion = true}));
    EXPECT_EQ(count(), 3U);
}

TEST_F(PortalAppearanceTest, passesOverValuesOfAnotherType) {
    const Portal portal(
        bus.address(),
        {{common, {{"color-scheme", sdbus::Variant(std::string("dark"))}, {"contrast", sdbus::Variant(true)}}},
         {gnome, {{"text-scaling-factor", sdbus::Variant(std::string("big"))}}}});
    watch();
    EXPECT_TRUE(becomes({}));
}

TEST_F(PortalAppearanceTest, findsAPortalThatStartsLaterOrAgain) {
    watch();
    EXPECT_EQ(count(), 0U);
    {
        const Portal portal(bus.address(), scheme(1));
        EXPECT_TRUE(becomes({.isDark = true}));
    }
    const Portal portal(bus.address(), scheme(2));
    EXPECT_TRUE(becomes({.isDark = false}));
}

TEST_F(PortalAppearanceTest, standsABusThatDies) {
    watch();
    bus.kill();
    EXPECT_EQ(count(), 0U);
}

} // namespace
} // namespace kestrio
