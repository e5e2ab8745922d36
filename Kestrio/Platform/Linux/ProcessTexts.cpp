#include "Kestrio/Platform/Linux/ProcessTexts.h"

#include "Kestrio/Platform/Linux/KernelText.h"

#include <algorithm>
#include <array>

namespace kestrio {
namespace {

constexpr std::uint64_t kernelThreadFlag = 0x0020'0000; // PF_KTHREAD, the same since Linux 2.6

// The fields of `stat` as proc(5) numbers them.
constexpr std::size_t parentField = 4;
constexpr std::size_t flagsField = 9;
constexpr std::size_t majorFaultsField = 12;
constexpr std::size_t userTimeField = 14;
constexpr std::size_t systemTimeField = 15;
constexpr std::size_t startField = 22;
constexpr std::size_t startCodeField = 26;
constexpr std::size_t startStackField = 28;
constexpr std::size_t processorField = 39;
constexpr std::size_t firstNumberField = parentField;
/// All kernels since 2.6 have more than that.
constexpr std::size_t leastFields = startStackField;

using StatFields = std::array<std::uint64_t, processorField + 1>;

/// Some fields are signed; of those none matters here, so that their sign is passed over.
std::optional<std::uint64_t> statNumber(std::string_view word) {
    return parsedNumber<std::uint64_t>(word.starts_with('-') ? word.substr(1) : word);
}

/// The number in kB behind a key of `status`, in bytes.
std::uint64_t kilobytes(std::string_view value) {
    return leadingNumber(value).value_or(0) * 1024;
}

} // namespace

std::optional<ProcessStat> parseProcessStat(std::string_view text) {
    // The name in brackets may hold anything, brackets, blanks and line breaks too; behind it stand plain fields.
    const auto open = text.find('(');
    const auto close = text.rfind(')');
    if (open == std::string_view::npos || close == std::string_view::npos || close < open)
        return std::nullopt;
    ProcessStat stat;
    stat.name = text.substr(open + 1, close - open - 1);
    auto rest = text.substr(close + 1);
    rest = rest.substr(0, rest.find('\n'));
    const auto state = nextWord(rest);
    if (state.size() != 1)
        return std::nullopt;
    stat.state = state.front();

    StatFields fields{};
    std::size_t field = firstNumberField;
    for (; field <= processorField; ++field) {
        const auto number = statNumber(nextWord(rest));
        if (!number)
            break;
        fields[field] = *number;
    }
    if (field <= leastFields)
        return std::nullopt;
    stat.parent = static_cast<pid_t>(fields[parentField]);
    stat.isKernelThread = (fields[flagsField] & kernelThreadFlag) != 0;
    stat.majorFaults = fields[majorFaultsField];
    stat.cpuTicks = fields[userTimeField] + fields[systemTimeField];
    stat.startTicks = fields[startField];
    stat.startCode = fields[startCodeField];
    stat.startStack = fields[startStackField];
    if (field > processorField)
        stat.processor = static_cast<int>(fields[processorField]);
    return stat;
}

ProcessStatus parseProcessStatus(std::string_view text) {
    // The first line holds the name, with its line breaks escaped.
    ProcessStatus status;
    while (const auto line = nextLine(text)) {
        const auto colon = line->find(':');
        if (colon == std::string_view::npos)
            continue;
        const auto key = line->substr(0, colon);
        const auto value = line->substr(colon + 1);
        if (key == "VmRSS")
            status.resident = kilobytes(value);
        else if (key == "RssAnon")
            status.residentAnonymous = kilobytes(value);
        else if (key == "RssShmem")
            status.residentShared = kilobytes(value);
        else if (key == "VmSwap")
            status.swapped = kilobytes(value);
        else if (key == "voluntary_ctxt_switches")
            status.voluntarySwitches = leadingNumber(value).value_or(0);
    }
    return status;
}

std::optional<ProcessPages> parseProcessPages(std::string_view text) {
    const auto size = parsedNumber<std::uint64_t>(nextWord(text));
    const auto resident = parsedNumber<std::uint64_t>(nextWord(text));
    const auto shared = parsedNumber<std::uint64_t>(nextWord(text));
    if (!size || !resident || !shared)
        return std::nullopt;
    return ProcessPages{*size, *resident, *shared};
}

std::optional<ProcessDiskUse> parseProcessDiskUse(std::string_view text) {
    std::optional<std::uint64_t> read;
    std::optional<std::uint64_t> written;
    while (const auto line = nextLine(text)) {
        if (line->starts_with("read_bytes:"))
            read = leadingNumber(line->substr(11));
        else if (line->starts_with("write_bytes:"))
            written = leadingNumber(line->substr(12));
    }
    return read && written ? std::optional(ProcessDiskUse{*read, *written}) : std::nullopt;
}

} // namespace kestrio
