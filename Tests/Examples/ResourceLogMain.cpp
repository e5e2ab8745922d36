// Writes an example resource log: example-resource-log FILE [DAYS [DAYS-OF-SECONDS [SEED [END]]]], ending now, or at
// END in seconds since 1970.
#include "Kestrio/Base/Clock.h"
#include "Kestrio/Base/DatabaseFile.h"
#include "Tests/Examples/ExampleResourceLog.h"

#include <cstdlib>
#include <fmt/format.h>

int main(int count, char** words) {
    using namespace kestrio;
    if (count < 2) {
        fmt::print(stderr, "usage: example-resource-log FILE [DAYS [DAYS-OF-SECONDS [SEED [END]]]]\n");
        return 2;
    }
    ExampleResourceLogOptions options;
    if (count > 2)
        options.days = options.detailDays = std::atoi(words[2]);
    if (count > 3)
        options.detailDays = std::atoi(words[3]);
    if (count > 4)
        options.seed = std::strtoull(words[4], nullptr, 10);
    const auto end = count > 5 ? Date(std::strtod(words[5], nullptr)) : SystemClock().now();
    try {
        writeResourceLog(words[1], end, Calendar::current(), options);
    } catch (const DatabaseError& error) {
        fmt::print(stderr, "example-resource-log: cannot write {}: {}\n", words[1], error.what());
        return 1;
    }
    return 0;
}
