// The agent's end of the tab bridge alone, for tests that ask it: reads lines such as "front org.mozilla.firefox",
// "windows …", "audible …" and "connected" from standard input and answers each with a line of JSON.
#include "Kestrio/Base/Clock.h"
#include "Kestrio/Platform/Linux/BridgeBrowserReader.h"
#include "Programs/Agent/BrowserTabs.h"

#include <iostream>
#include <nlohmann/json.hpp>
#include <sstream>

namespace kestrio {
namespace {

using JSON = nlohmann::json;

JSON answer(const TabBoard& board, const std::string& question, const std::string& browser) {
    BridgeBrowserReader reader(board);
    if (question == "front")
        return std::get<std::string>(reader.frontTab(browser));
    if (question == "windows")
        return std::get<std::string>(reader.windows(browser));
    if (question == "connected")
        return board.browsers();
    auto titles = JSON::array();
    for (const auto& tab : board.audibleTabs(browser))
        titles.push_back(tab.title);
    return titles;
}

} // namespace
} // namespace kestrio

int main() {
    const auto places = kestrio::locations(kestrio::processEnvironment);
    if (!places)
        return 1;
    const kestrio::SystemClock clock;
    const kestrio::BrowserTabs tabs(clock, kestrio::tabSocketPath(*places));
    for (std::string line; std::getline(std::cin, line);) {
        std::istringstream words(line);
        std::string question;
        std::string browser;
        words >> question >> browser;
        std::cout << kestrio::answer(tabs.board(), question, browser).dump() << std::endl;
    }
}
