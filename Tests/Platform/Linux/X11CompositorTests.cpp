#include "Kestrio/Platform/Linux/X11Compositor.h"
#include "Tests/Platform/Linux/X11TestClient.h"
#include "Tests/Support/VirtualDisplay.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

TEST(X11Compositor, windowsAreBlendedWhileAProgramSaysThatItDoes) {
    const VirtualDisplay display;
    const X11TestClient client(display.name());
    EXPECT_FALSE(blendsWindows(display.name()));

    const auto selection = client.atom("_NET_WM_CM_S0");
    EXPECT_FALSE(blendsWindows(display.name())) << "nobody owns it yet";

    const auto window = client.create("compositor");
    xcb_set_selection_owner(client.xcb(), window, selection, XCB_CURRENT_TIME);
    ASSERT_NE(client.atom("once all before it is done"), xcb_atom_t{XCB_ATOM_NONE});
    EXPECT_TRUE(blendsWindows(display.name()));

    xcb_set_selection_owner(client.xcb(), XCB_WINDOW_NONE, selection, XCB_CURRENT_TIME);
    ASSERT_NE(client.atom("and once more"), xcb_atom_t{XCB_ATOM_NONE});
    EXPECT_FALSE(blendsWindows(display.name()));
}

TEST(X11Compositor, whatShowsWindowsWithoutThisServerBlendsThem) {
    EXPECT_TRUE(blendsWindows(":987"));
}

} // namespace
} // namespace kestrio
