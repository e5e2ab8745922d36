#include "Kestrio/Platform/Linux/TitledBrowserReader.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

const std::string privateTab = "about:private\x1F\x1Fincognito";

TEST(TitledBrowserReader, tellsAPrivateFrontWindowByItsTitle) {
    const struct {
        const char* id;
        std::vector<std::string> titles;
        std::string strict;
        std::string lenient;
    } rows[] = {
        {"org.mozilla.firefox", {"Page — Mozilla Firefox"}, "", ""},
        {"org.mozilla.firefox", {"Page — Mozilla Firefox Private Browsing"}, privateTab, privateTab},
        {"org.mozilla.firefox", {"Page — Mozilla Firefox", "Page — Mozilla Firefox Private Browsing"}, "", ""},
        {"org.mozilla.firefox", {"Page — Mozilla Firefox in words unknown"}, privateTab, ""},
        {"org.chromium.Chromium", {"Page - Chromium"}, privateTab, ""},
        {"com.microsoft.edgemac", {"Page - [InPrivate] - Microsoft Edge"}, privateTab, privateTab},
        {"org.chromium.Chromium", {""}, "", ""},
        {"org.chromium.Chromium", {}, "", ""},
    };
    for (const auto& row : rows) {
        const TitledWindows windows = [&](const std::string&) {
            std::vector<TitledWindow> all;
            for (const auto& title : row.titles)
                all.push_back({1, 1, title, {}, {}, false});
            return std::optional(all);
        };
        TitledBrowserReader strict(windows);
        TitledBrowserReader lenient(windows, [](const std::string&) { return false; });
        const auto what = row.titles.empty() ? "none" : row.titles.front();
        EXPECT_EQ(strict.frontTab(row.id), BrowserAnswer(row.strict)) << what;
        EXPECT_EQ(lenient.frontTab(row.id), BrowserAnswer(row.lenient)) << what;
        EXPECT_EQ(strict.windows(row.id), BrowserAnswer("")) << what;
    }
}

TEST(TitledBrowserReader, saysNothingWithoutAWindowSystem) {
    TitledBrowserReader reader([](const std::string&) { return std::nullopt; });
    EXPECT_EQ(reader.frontTab("org.mozilla.firefox"), BrowserAnswer(""));
}

} // namespace
} // namespace kestrio
