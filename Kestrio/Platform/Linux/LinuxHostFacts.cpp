#include "Kestrio/Platform/Linux/LinuxHostFacts.h"

#include "Kestrio/Base/Text.h"

#include <charconv>
#include <fstream>
#include <iterator>
#include <optional>
#include <sys/utsname.h>

namespace kestrio {
namespace {

std::string fileText(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return text::fromUntrustedBytes(std::string(std::istreambuf_iterator<char>(stream), {}));
}

/// The value of the first line that begins with the key and, after blanks, the separator.
std::optional<std::string_view> valueOf(std::string_view text, std::string_view key, char separator) {
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        const auto line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.substr(0, key.size()) != key)
            continue;
        const auto rest = text::trimmed(line.substr(key.size()));
        if (!rest.empty() && rest.front() == separator)
            return text::trimmed(rest.substr(1));
    }
    return std::nullopt;
}

std::string kernel() {
    utsname names{};
    if (uname(&names) != 0)
        return {};
    const std::string release = names.release;
    return std::string(names.sysname) + " " + release.substr(0, release.find_first_not_of("0123456789."));
}

} // namespace

std::string prettyName(std::string_view osRelease) {
    auto value = valueOf(osRelease, "PRETTY_NAME", '=').value_or("");
    if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') && value.back() == value.front())
        value = value.substr(1, value.size() - 2);
    return std::string(value);
}

std::string processorName(std::string_view cpuinfo) {
    for (const auto key : {"model name", "Model", "Hardware"})
        if (const auto value = valueOf(cpuinfo, key, ':'); value && !value->empty())
            return std::string(*value);
    return {};
}

std::uint64_t totalMemory(std::string_view meminfo) {
    const auto value = valueOf(meminfo, "MemTotal", ':').value_or("");
    std::uint64_t kibibytes = 0;
    std::from_chars(value.data(), value.data() + value.size(), kibibytes);
    return kibibytes * 1024;
}

HostFacts hostFacts(const std::filesystem::path& root) {
    HostFacts facts;
    facts.system = prettyName(fileText(root / "etc/os-release"));
    if (const auto name = kernel(); !name.empty())
        facts.system += (facts.system.empty() ? "" : ", ") + name;
    facts.chip = processorName(fileText(root / "proc/cpuinfo"));
    facts.physicalMemory = totalMemory(fileText(root / "proc/meminfo"));
    return facts;
}

} // namespace kestrio
