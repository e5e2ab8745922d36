// Writes an example database that ends today; example-history --help says more.
#include "Kestrio/Base/Clock.h"
#include "Tests/Examples/ExampleHistory.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

int main(int count, char** words) {
    using namespace kestrio;
    CLI::App app("Writes a database of made-up sessions that ends today.", "example-history");
    std::string file;
    ExampleHistoryOptions options;
    app.add_option("file", file, "The database")->required();
    app.add_option("days", options.days, "How many it reaches back")->check(CLI::Range(0, 10'000));
    app.add_option("sessions", options.sessionsPerWorkday, "On a working day")->check(CLI::Range(1, 100'000));
    app.add_option("seed", options.seed, "Another one makes another history");
    CLI11_PARSE(app, count, words);

    const auto sessions = exampleHistory(SystemClock().now(), Calendar::current(), options);
    if (!writeHistory(std::filesystem::absolute(file), sessions)) {
        fmt::print(stderr, "example-history: cannot write {}\n", file);
        return 1;
    }
    fmt::print("{} sessions\n", sessions.size());
    return 0;
}
