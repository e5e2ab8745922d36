#include "Kestrio/Platform/Linux/KeyFile.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <system_error>

namespace kestrio {
namespace {

constexpr std::uintmax_t mostBytes = 1024 * 1024;

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

bool isGroup(std::string_view line) {
    return line.size() > 2 && line.front() == '[' && line.back() == ']';
}

} // namespace

KeyFile parseKeyFile(std::string_view text) {
    KeyFile file;
    std::map<std::string, std::string, std::less<>>* group = nullptr;
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        const auto line = trimmed(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        const auto equals = line.find('=');
        if (isGroup(line))
            group = &file[std::string(line.substr(1, line.size() - 2))];
        else if (group != nullptr && equals != std::string_view::npos && equals > 0 && line.front() != '#')
            group->emplace(trimmed(line.substr(0, equals)), trimmed(line.substr(equals + 1)));
    }
    return file;
}

KeyFile readKeyFile(const std::filesystem::path& file) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error) || std::filesystem::file_size(file, error) > mostBytes || error)
        return {};
    std::ifstream stream(file, std::ios::binary);
    return parseKeyFile(std::string(std::istreambuf_iterator(stream), {}));
}

std::string_view value(const KeyFile& file, std::string_view group, std::string_view key) {
    const auto found = file.find(group);
    if (found == file.end())
        return {};
    const auto entry = found->second.find(key);
    return entry == found->second.end() ? std::string_view() : std::string_view(entry->second);
}

} // namespace kestrio
