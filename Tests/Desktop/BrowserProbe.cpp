// Says what the readers of browsers answer, for the tests with real ones. Each line of the input is a question,
// "front ID", "windows ID", "titled ID" or "chain ID"; each is answered by a line of JSON: the text, and how long it
// took. The chain is that of the agent without the tab bridge. "settled" counts the pages that became certain by
// themselves.
#include "Tests/Support/RealBrowserReaders.h"

#include <iostream>
#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

BrowserAnswer answer(RealBrowserReaders& readers, const std::string& question, const std::string& id) {
    if (question == "front")
        return readers.accessibility.frontTab(id);
    if (question == "windows")
        return readers.accessibility.windows(id);
    if (question == "titled")
        return readers.titled.frontTab(id);
    return readers.chain.frontTab(id);
}

} // namespace
} // namespace kestrio

int main() {
    using namespace kestrio;
    WorkerQueue queue("browsers");
    auto readers = queue.sync([&] { return std::make_unique<RealBrowserReaders>(queue); });
    std::string question;
    std::string id;
    while (std::cin >> question) {
        if (question == "settled") {
            std::cout << nlohmann::json{{"settled", queue.sync([&] { return readers->settled; })}} << std::endl;
            continue;
        }
        std::cin >> id;
        const auto before = readers->clock.uptime();
        const auto text = queue.sync([&] { return answer(*readers, question, id); });
        const auto seconds = (readers->clock.uptime() - before).count();
        const auto* words = std::get_if<std::string>(&text);
        std::cout << nlohmann::json{{"text", words ? *words : "refused"}, {"seconds", seconds}} << std::endl;
    }
    queue.sync([&] { readers.reset(); });
}
