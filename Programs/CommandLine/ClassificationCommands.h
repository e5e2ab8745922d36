// The commands of `kestrioctl` about categories and projects. Each returns the exit status, as those in `Commands.h`.
//
// What they store holds for all that was ever recorded; a running agent and open windows follow the settings' file.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kestrio {

/// An application or a site; exactly one must be given.
struct CategoryTarget {
    std::optional<std::string> app;  // its identifier, or a name that it has on this host
    std::optional<std::string> site; // a host, or the address of a page
};

int listCategories(bool everything, bool json);
/// With `preview` nothing is stored, only counted what would change.
int setCategory(const CategoryTarget& target, const std::string& category, bool preview);
int resetCategory(const CategoryTarget& target, bool preview);

struct NewProjectRule {
    std::string keyword;
    std::optional<std::string> project; // absent together with `ignore`
    bool ignore = false;
    std::optional<std::int64_t> at; // its number in the list; the last one unless said
    bool preview = false;
};

int listProjects(bool json);
int addProject(const NewProjectRule& rule);
// Numbers are those of the list, from 1.
int moveProject(std::int64_t number, std::int64_t to);
int removeProject(std::int64_t number);

struct ExplainOptions {
    std::string app;
    std::optional<std::string> name; // as the desktop calls it; looked up unless said
    std::string title;
    std::optional<std::string> url;
    bool json = false;
};

int explain(const ExplainOptions& options);

} // namespace kestrio
