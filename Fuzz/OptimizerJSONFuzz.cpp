#include "Fuzz/Fuzz.h"
#include "Kestrio/Optimizer/OptimizerJSON.h"

/// What is read can be written, and is then read as the same.
void kestrio::fuzz(std::string_view input) {
    if (const auto tuning = decodedTuning(input))
        require(decodedTuning(encoded(*tuning).value()) == tuning);
    if (const auto rules = decodedRules(input))
        require(decodedRules(encoded(*rules).value()) == rules);
}
