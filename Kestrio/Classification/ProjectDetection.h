// Which project a stretch of activity belongs to: a name that groups work across applications, and has two sources
// that are kept apart.
//
// `ProjectDetector` reads it out of the titles of editors, development environments and terminals, once per sample, and
// what it finds is stored with the session. `ProjectRules` are the person's own and are applied to stored sessions each
// time a report is built, so that a new rule holds for all that was ever recorded and a removed one leaves no trace.
#pragma once

#include "Kestrio/Base/Signal.h"
#include "Kestrio/Classification/StoredSetting.h"
#include "TindraCore/UUID.h"

#include <cstddef>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace kestrio {

/// How an application puts a project into its titles. The first four are built in for some applications; hosts have
/// applications of the others.
enum class TitleFamily {
    editor,            // "file — project", or the project alone
    projectFirst,      // "project – file"
    projectInBrackets, // "file (project)"
    terminal,          // the working folder's path, or "project — shell"
    folderInBrackets,  // "file (folder's path)"
    folderBehindFile,  // "file - folder's path - [project]", the last only with a project open
    sessionFirst,      // "project: file", or the file alone
};
std::string_view rawValue(TitleFamily family);
/// Absent for a text that is none of the raw values.
std::optional<TitleFamily> titleFamily(std::string_view rawValue);

/// What a detector knows of the host and the person.
struct ProjectHost {
    // A terminal at home, or at nothing in particular, shows one of these: they are no projects.
    std::string accountName = {};
    std::string homeFolder = {}; // an absolute path
    std::string hostName = {};

    /// Applications of this host, by bundle identifier, beside the built-in ones.
    std::map<std::string, TitleFamily, std::less<>> applications = {};
};

/// What a title was taken for on the way to a project.
struct ProjectReading {
    std::optional<TitleFamily> family;  // absent when the application has no projects in its titles
    std::optional<std::string> read;    // as the title has it
    std::optional<std::string> project; // tidied; absent when it is no name for a project

    friend bool operator==(const ProjectReading&, const ProjectReading&) = default;
};

/// Immutable after construction; any thread.
class ProjectDetector {
public:
    explicit ProjectDetector(ProjectHost host = {});

    /// The project in a window's title, which is cleaned and bare of the application's signature. Absent for most.
    std::optional<std::string> detect(std::string_view bundleID, std::string_view appName,
                                      std::string_view title) const {
        return reading(bundleID, appName, title).project;
    }

    /// The same with the way there.
    ProjectReading reading(std::string_view bundleID, std::string_view appName, std::string_view title) const;

private:
    static std::optional<std::string> read(TitleFamily family, std::string_view title, std::string_view lowercasedName);
    std::optional<std::string> tidied(std::string_view name) const;

    const std::map<std::string, TitleFamily, std::less<>> hostApplications_;
    const std::set<std::string, std::less<>> ignoredNames_; // lower case
};

/// A keyword that makes a session part of a project. An empty project means: of none, whatever was detected.
struct ProjectRule {
    tindra::UUID id; // fresh for a new rule
    std::string keyword;
    std::string project;

    friend bool operator==(const ProjectRule&, const ProjectRule&) = default;
};

/// What the rules made of a session.
struct ProjectResolution {
    enum class Where { title, url, detected };
    struct Match {
        std::size_t rule; // its place in the list
        Where where;      // the first of these that held the keyword
        friend bool operator==(const Match&, const Match&) = default;
    };
    std::optional<std::string> project;
    std::optional<Match> match; // absent when no rule matched, and the detected project counts

    friend bool operator==(const ProjectResolution&, const ProjectResolution&) = default;
};

/// The person's rules, in the order of their priority. Lives as long as its program. The list may be read on any
/// thread, and is changed on one, the one whose observers hear of it.
class ProjectRules {
public:
    /// `stored` holds the rules as JSON. What cannot be read as rules counts as none, and stays stored until the list
    /// is set.
    explicit ProjectRules(StoredSetting<std::string> stored);

    std::vector<ProjectRule> rules() const;

    /// Replaces the whole list, stores it and tells the observers. False when it could not be stored; it then holds in
    /// this process alone.
    bool setRules(std::vector<ProjectRule> rules);

    /// Reads the list again, after somebody else changed it; tells the observers if it is different.
    void reload();

    /// The receiver is called after every change, on the thread that made it, with no lock held. Subscribing and
    /// dropping the token happen on that thread too.
    Subscription observe(std::function<void()> receiver) { return changed_.subscribe(std::move(receiver)); }

    /// The project that counts for a session with this title, address and detected project. The first rule whose
    /// keyword occurs in one of them decides. Case never counts; accents do not count in the title alone.
    static std::optional<std::string> resolve(const std::vector<ProjectRule>& rules, std::string_view title,
                                              const std::optional<std::string>& url,
                                              const std::optional<std::string>& detected) {
        return resolution(rules, title, url, detected).project;
    }

    /// The same with the rule that decided.
    static ProjectResolution resolution(const std::vector<ProjectRule>& rules, std::string_view title,
                                        const std::optional<std::string>& url,
                                        const std::optional<std::string>& detected);

private:
    const StoredSetting<std::string> stored_;
    // Guards the list, and keeps what is stored in step with it. Recursive, since a store that tells at once of what is
    // written may lead back to `reload`.
    mutable std::recursive_mutex lock_;
    std::vector<ProjectRule> list_;
    Signal<> changed_;
};

/// The rules as a JSON array of objects with "id", "keyword" and "project". Absent for what JSON cannot hold: a text
/// that is not UTF-8.
std::optional<std::string> encoded(const std::vector<ProjectRule>& rules);

/// Absent unless it is such an array with all three keys in each object; further keys are passed over.
std::optional<std::vector<ProjectRule>> decodedProjectRules(std::string_view json);

} // namespace kestrio
