#include "Kestrio/Pages/Settings/SettingRow.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

SettingPicker daysPicker(std::optional<std::int64_t> current) {
    return numberPicker({{1, countOf(1, "day", "days")}, {30, countOf(30, "day", "days")}}, current);
}

TEST(SettingRow, aNumberIsSaidInTheSingularWhenItIsOne) {
    EXPECT_EQ(countOf(1, "day", "days"), "1 day");
    EXPECT_EQ(countOf(0, "day", "days"), "0 days");
    EXPECT_EQ(countOf(30, "day", "days"), "30 days");
}

TEST(SettingRow, aPickerMarksTheStoredNumber) {
    EXPECT_EQ(daysPicker(30).choices,
              (std::vector<SettingChoice>{{"1 day", std::int64_t(1), false}, {"30 days", std::int64_t(30), true}}));
}

TEST(SettingRow, aPickerWhoseStoredValueIsNotAmongItsChoicesShowsNoSelection) {
    for (const auto current : {std::optional<std::int64_t>(7), std::optional<std::int64_t>()})
        for (const auto& choice : daysPicker(current).choices)
            EXPECT_FALSE(choice.isCurrent) << choice.title;
}

TEST(SettingRow, aChoiceIsFoundByItsRowAndItsPlace) {
    const std::vector<SettingsSection> sections{
        {.title = "A", .rows = {{.id = "on", .title = "On", .control = SettingSwitch{true}}}},
        {.title = "B", .rows = {{.id = "days", .title = "Days", .control = daysPicker(1)}}}};
    EXPECT_EQ(rowOf(sections, "none"), nullptr);
    ASSERT_NE(rowOf(sections, "days"), nullptr);
    EXPECT_EQ(chosenValue(*rowOf(sections, "days"), 1), SettingValue(std::int64_t(30)));
    EXPECT_EQ(chosenValue(*rowOf(sections, "days"), 2), std::nullopt);
    EXPECT_EQ(chosenValue(*rowOf(sections, "on"), 0), std::nullopt) << "a switch has no choices";
}

} // namespace
} // namespace kestrio
