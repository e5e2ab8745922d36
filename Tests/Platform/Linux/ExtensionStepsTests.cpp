#include "Kestrio/Platform/Linux/ExtensionSteps.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

TEST(ExtensionSteps, sayHowEachFamilyTakesTheExtension) {
    EXPECT_EQ(loadingStep(BrowserFamily::chromium, "/x"),
              "Open chrome://extensions, switch on Developer mode, choose Load unpacked and the folder /x/chromium");
    EXPECT_EQ(loadingStep(BrowserFamily::firefox, "/x"),
              "Open about:debugging, choose This Firefox, Load Temporary Add-on and the file "
              "/x/firefox/manifest.json; where unsigned add-ons are allowed, install /x/firefox.xpi for good");
}

TEST(ExtensionSteps, onlyFirefoxOpensItsPageForOthers) {
    EXPECT_EQ(extensionPage(BrowserFamily::firefox), "about:debugging#/runtime/this-firefox");
    EXPECT_EQ(extensionPage(BrowserFamily::chromium), std::nullopt);
}

TEST(ExtensionSteps, theExtensionLiesBesideTheProgramsOrIsShared) {
    const TemporaryFolder folder;
    const auto programs = folder.path() / "bin";
    EXPECT_EQ(extensionFolder(programs), folder.path() / "share/kestrio/extension");
    std::filesystem::create_directory(folder.path() / "extension");
    EXPECT_EQ(extensionFolder(programs), folder.path() / "extension");
}

} // namespace
} // namespace kestrio
