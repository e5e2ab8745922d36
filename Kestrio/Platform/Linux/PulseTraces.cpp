#include "Kestrio/Platform/Linux/PulseTraces.h"

#include "Kestrio/Platform/Linux/ProcessIdentity.h"

#include <algorithm>
#include <charconv>

namespace kestrio {
namespace {

std::optional<pid_t> processNumber(const std::string& text) {
    pid_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() && number > 0 ? std::optional(number)
                                                                                  : std::nullopt;
}

bool runs(pid_t process, const std::string& program, const std::filesystem::path& processes) {
    const auto evidence = readProcessEvidence(processes, process);
    const auto& names = evidence.programNames;
    return (evidence.executable && evidence.executable->filename() == program) ||
           std::find(names.begin(), names.end(), program) != names.end();
}

} // namespace

std::optional<ApplicationTrace> traceOfStream(const StreamProperties& properties, const std::string& hostName,
                                              const std::filesystem::path& processes) {
    if (const auto host = properties("application.process.host"); host && *host != hostName)
        return std::nullopt;
    ApplicationTrace trace;
    const auto program = properties("application.process.binary");
    if (const auto number = properties("application.process.id"))
        trace.process = processNumber(*number);
    if (trace.process && program && !runs(*trace.process, *program, processes))
        trace.process.reset();
    // From the most reliable to the least: a sandbox's word, an identifier, the name for people, the program.
    for (const char* name : {"pipewire.access.portal.app_id", "application.id", "application.name"})
        if (auto text = properties(name); text && !text->empty()) {
            trace.name = std::move(*text);
            break;
        }
    if (trace.name.empty())
        trace.name = program.value_or("");
    return trace.process || !trace.name.empty() ? std::optional(std::move(trace)) : std::nullopt;
}

} // namespace kestrio
