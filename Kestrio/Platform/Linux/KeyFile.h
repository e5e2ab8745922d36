// Texts of groups, keys and values, as icon themes and toolkits keep their settings: "[GROUP]", "KEY=VALUE", "#" before
// remarks. Pure functions.
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace kestrio {

/// From groups to their keys to the values as they stand. Of two alike the first counts; what is no such line is passed
/// over.
using KeyFile = std::map<std::string, std::map<std::string, std::string, std::less<>>, std::less<>>;

KeyFile parseKeyFile(std::string_view text);

/// Of a file of at most 1 MB; empty when it cannot be read.
KeyFile readKeyFile(const std::filesystem::path& file);

/// Empty when it is not there.
std::string_view value(const KeyFile& file, std::string_view group, std::string_view key);

} // namespace kestrio
