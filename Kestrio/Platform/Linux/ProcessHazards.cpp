#include "Kestrio/Platform/Linux/ProcessHazards.h"

#include "Kestrio/Platform/Linux/KernelText.h"
#include "Kestrio/Platform/Linux/ProcessIdentity.h"
#include "Kestrio/Platform/Linux/ProcessTexts.h"

#include <algorithm>
#include <string>
#include <unistd.h>

namespace kestrio {
namespace {

/// Deeper families exist in programs gone wild alone.
constexpr int longestDescent = 64;

constexpr pid_t firstProcess = 1;

} // namespace

/// The name of a process can hold brackets and blanks; it ends with the last bracket.
std::optional<TerminalJob> parseTerminalJob(std::string_view stat) {
    auto head = stat;
    const auto process = parsedNumber<pid_t>(nextWord(head));
    stat.remove_prefix(std::min(stat.rfind(')'), stat.size() - 1) + 1);
    nextWord(stat); // state
    nextWord(stat); // parent
    const auto group = parsedNumber<pid_t>(nextWord(stat));
    const auto session = parsedNumber<pid_t>(nextWord(stat));
    const auto terminal = parsedNumber<int>(nextWord(stat));
    const auto inFront = parsedNumber<pid_t>(nextWord(stat));
    if (!process || !group || !session || !terminal || !inFront)
        return std::nullopt;
    return TerminalJob{*process, *group, *session, *terminal, *inFront};
}

pid_t parseTracer(std::string_view status) {
    constexpr std::string_view key = "TracerPid:";
    while (auto line = nextLine(status)) {
        if (!line->starts_with(key))
            continue;
        line->remove_prefix(key.size());
        return parsedNumber<pid_t>(nextWord(*line)).value_or(0);
    }
    return 0;
}

bool isAncestor(pid_t ancestor, pid_t process, const std::filesystem::path& processes) {
    pid_t at = process;
    for (int step = 0; step < longestDescent && at > firstProcess; ++step) {
        const auto text = readProcessFile(processes / std::to_string(at) / "stat");
        const auto stat = text ? parseProcessStat(*text) : std::nullopt;
        at = stat ? stat->parent : 0;
        if (at == ancestor)
            return at > firstProcess;
    }
    return false;
}

std::optional<ProcessHazard> processHazard(pid_t process, const std::filesystem::path& processes) {
    const auto folder = processes / std::to_string(process);
    const auto stat = readProcessFile(folder / "stat");
    const auto status = readProcessFile(folder / "status");
    if (!stat || !status)
        return std::nullopt;
    const auto job = parseTerminalJob(*stat);
    if (job && job->isInFront() && !job->isSessionLeader())
        return ProcessHazard::jobInFront;
    if (parseTracer(*status) != 0)
        return ProcessHazard::traced;
    return isAncestor(process, getpid(), processes) ? std::optional(ProcessHazard::ancestor) : std::nullopt;
}

} // namespace kestrio
