// Writes an example database: example-history FILE [DAYS [SESSIONS-PER-WORKDAY [SEED]]], ending today.
#include "Kestrio/Base/Clock.h"
#include "Tests/Examples/ExampleHistory.h"

#include <cstdlib>
#include <fmt/format.h>

int main(int count, char** words) {
    using namespace kestrio;
    if (count < 2) {
        fmt::print(stderr, "usage: example-history FILE [DAYS [SESSIONS-PER-WORKDAY [SEED]]]\n");
        return 2;
    }
    ExampleHistoryOptions options;
    if (count > 2)
        options.days = std::atoi(words[2]);
    if (count > 3)
        options.sessionsPerWorkday = std::max(1, std::atoi(words[3]));
    if (count > 4)
        options.seed = std::strtoull(words[4], nullptr, 10);
    const auto sessions = exampleHistory(SystemClock().now(), Calendar::current(), options);
    if (!writeHistory(words[1], sessions)) {
        fmt::print(stderr, "example-history: cannot write {}\n", words[1]);
        return 1;
    }
    fmt::print("{} sessions\n", sessions.size());
    return 0;
}
