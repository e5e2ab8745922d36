#include "Kestrio/Platform/Linux/VisitedPages.h"

#include <gtest/gtest.h>
#include <string>

namespace kestrio {
namespace {

TEST(VisitedPages, aTabIsFoundByItsLabel) {
    VisitedPages pages;
    pages.remember({"http://news.test", "News"});
    pages.remember({"http://sport.test", "News of sport"});
    pages.remember({"http://none.test", ""});
    const struct {
        const char* label;
        const char* address;
    } rows[] = {
        {"News", "http://news.test"},
        {"News - Audio playing", "http://news.test"},
        {"News of sport - Memory usage - 22.4 MB", "http://sport.test"},
        {"Newsletter", nullptr},
        {"Old News", nullptr},
        {"", nullptr},
    };
    for (const auto& row : rows) {
        const auto* found = pages.find(row.label);
        EXPECT_EQ(found ? found->address : "none", row.address ? row.address : "none") << row.label;
    }
}

TEST(VisitedPages, ofOneTitleThePageSeenLastCounts) {
    VisitedPages pages;
    pages.remember({"http://a.test", "Page"});
    pages.remember({"http://b.test", "Page"});
    EXPECT_EQ(pages.find("Page")->address, "http://b.test");
}

TEST(VisitedPages, theOldestIsForgottenFirst) {
    VisitedPages pages;
    for (std::size_t i = 0; i <= VisitedPages::most; ++i)
        pages.remember({"http://a.test", "Page" + std::to_string(i)});
    EXPECT_EQ(pages.find("Page0"), nullptr);
    EXPECT_NE(pages.find("Page1"), nullptr);
}

} // namespace
} // namespace kestrio
