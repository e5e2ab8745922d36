// Writes an example resource log; example-resource-log --help says more.
#include "Kestrio/Base/Clock.h"
#include "Kestrio/Base/DatabaseFile.h"
#include "Tests/Examples/ExampleResourceLog.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

int main(int count, char** words) {
    using namespace kestrio;
    CLI::App app("Writes a made-up log of how a machine performed.", "example-resource-log");
    std::string file;
    ExampleResourceLogOptions options;
    std::optional<int> detailDays;
    std::optional<double> end;
    app.add_option("file", file, "The database")->required();
    app.add_option("days", options.days, "How many it reaches back")->check(CLI::Range(0, 10'000));
    app.add_option("detail-days", detailDays, "How many of them have seconds; all unless said")
        ->check(CLI::Range(0, 10'000));
    app.add_option("seed", options.seed, "Another one makes another log");
    app.add_option("end", end, "Its last moment, in seconds since 1970; now unless said");
    CLI11_PARSE(app, count, words);

    options.detailDays = detailDays.value_or(options.days);
    try {
        writeResourceLog(std::filesystem::absolute(file), end ? Date(*end) : SystemClock().now(), Calendar::current(),
                         options);
    } catch (const DatabaseError& error) {
        fmt::print(stderr, "example-resource-log: cannot write {}: {}\n", file, error.what());
        return 1;
    }
    return 0;
}
