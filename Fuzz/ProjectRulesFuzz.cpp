#include "Fuzz/Fuzz.h"
#include "Kestrio/Classification/ProjectDetection.h"

/// What was read as rules once is read again, unchanged, after being written; and rules can be asked about anything.
void kestrio::fuzz(std::string_view input) {
    const auto rules = decodedProjectRules(input);
    if (!rules)
        return;
    const auto again = encoded(*rules);
    require(again && decodedProjectRules(*again) == rules);
    const auto found = ProjectRules::resolution(*rules, input, std::string(input), std::nullopt);
    require(found.match.has_value() || !found.project);
    require(!found.match || found.match->rule < rules->size());
}
