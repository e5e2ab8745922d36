#include "Kestrio/Activity/BrowserInspector.h"
#include "Kestrio/Base/Text.h"
#include "Kestrio/Classification/TextTools.h"
#include "Tests/Activity/RealTitles.h"

#include <gtest/gtest.h>
#include <iterator>

namespace kestrio {
namespace {

std::string recorded(std::string_view title, std::string_view appName) {
    return TitleCleaner::removingAppName(TitleCleaner::clean(title), appName);
}

TEST(RealTitles, areManyAndWellFormed) {
    EXPECT_GE(std::size(realTitles) + std::size(realBrowserTitles), 150u);
    for (const auto& rows : {std::pair(std::begin(realTitles), std::end(realTitles)),
                             std::pair(std::begin(realBrowserTitles), std::end(realBrowserTitles))})
        for (const auto* row = rows.first; row != rows.second; ++row)
            EXPECT_EQ(text::fromUntrustedBytes(row->title), row->title);
}

TEST(RealTitles, becomeWhatAReportGroupsBy) {
    for (const auto& row : realTitles)
        EXPECT_EQ(recorded(row.title, row.appName), row.becomes) << "\"" << row.title << "\" of " << row.appName;
}

TEST(RealTitles, ofBrowsersLoseTheNameAndTheProfile) {
    for (const auto& row : realBrowserTitles)
        EXPECT_EQ(recorded(BrowserInspector::stripBrowserName(row.title, row.appName), row.appName), row.becomes)
            << "\"" << row.title << "\" of " << row.appName;
}

} // namespace
} // namespace kestrio
