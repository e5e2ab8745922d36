// The texts of `Catalogue/*.tsv`; the definitions are written at build time.
#pragma once

#include <string_view>

namespace kestrio::embedded {

extern const std::string_view applications;
extern const std::string_view lockScreens;
extern const std::string_view prompts;
extern const std::string_view essentials;
extern const std::string_view systemMonitors;
extern const std::string_view titleFamilies;

} // namespace kestrio::embedded
