#include "Kestrio/Shell/SystemMenuParts.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

TEST(SystemMenuParts, areWhatTheStyleSays) {
    const std::pair<SystemMenuStyle, SystemMenuParts> rows[] = {{SystemMenuStyle::iconAndPercent, {true, true}},
                                                                {SystemMenuStyle::icon, {true, false}},
                                                                {SystemMenuStyle::percent, {false, true}},
                                                                {SystemMenuStyle::hidden, {false, false}}};
    for (const auto& [style, parts] : rows)
        EXPECT_EQ(systemMenuParts(style), parts) << rawText(style);
}

} // namespace
} // namespace kestrio
