#include "Programs/CommandLine/ClassificationCommands.h"

#include "Kestrio/Base/Text.h"
#include "Kestrio/Classification/TextTools.h"
#include "Kestrio/Platform/Linux/ApplicationIdentity.h"
#include "Kestrio/Shell/ClassificationSettings.h"
#include "Kestrio/Shell/FreshUUID.h"
#include "Kestrio/Shell/Settings.h"
#include "Programs/Agent/HostClassification.h"
#include "Programs/CommandLine/ClassificationChanges.h"
#include "Programs/CommandLine/ClassificationLists.h"
#include "Programs/CommandLine/Explanation.h"
#include "Programs/CommandLine/StoredSessions.h"
#include "Programs/CommandLine/TableParts.h"

#include <algorithm>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <variant>

namespace kestrio {
namespace {

using namespace exitStatus;

/// What a person typed, as a message shows it.
std::string quoted(const std::string& typed) {
    return "\"" + text::fittedToColumns(typed, 60) + "\"";
}

int refuse(const std::string& why) {
    complain(why);
    return wrongUsage;
}

/// The settings with the person's categories and rules, for one command.
struct Classification {
    explicit Classification(const Locations& places)
        : store(openSettings(places)), settings(*store, hostHint(processEnvironment, clock)) {}

    const SystemClock clock;
    std::unique_ptr<FileKeyValueStore> store;
    ClassificationSettings settings;
};

std::string applicationID(const std::string& typed) {
    return IdentityCatalogue::builtIn().identifierOfDesktopID(typed);
}

std::string applicationName(const std::string& bundleID) {
    const SystemClock clock;
    DesktopEntries entries(applicationFolders(processEnvironment), messageLocale(processEnvironment), clock);
    return ApplicationIdentity(entries, IdentityCatalogue::builtIn()).name(bundleID).value_or(bundleID);
}

bool isBlankOrControl(char c) {
    return static_cast<unsigned char>(c) <= ' ' || c == '\x7F';
}

/// The domain as sessions have it. A host, with a port or without, or a whole address; no part of one.
std::optional<std::string> siteDomain(const std::string& typed) {
    const auto text = std::string(text::trimmedOfBlanks(typed));
    const bool isAddress = text.find("://") != std::string::npos;
    if (std::any_of(text.begin(), text.end(), isBlankOrControl) ||
        (!isAddress && text.find_first_of("/?#@") != std::string::npos))
        return std::nullopt;
    return URLTools::domain(isAddress ? text : "https://" + text);
}

struct Target {
    CategoryKind kind;
    std::string name;
};

std::variant<Target, std::string> resolved(const CategoryTarget& target) {
    if (target.app.has_value() == target.site.has_value())
        return "say which one: --app ID or --site HOST";
    if (target.app)
        return text::trimmedOfBlanks(*target.app).empty()
                   ? std::variant<Target, std::string>("--app wants the identifier of an application")
                   : Target{CategoryKind::app, applicationID(*target.app)};
    if (auto domain = siteDomain(*target.site))
        return Target{CategoryKind::site, std::move(*domain)};
    return "--site " + quoted(*target.site) + " is no site; try a host such as docs.google.com, or a page's address";
}

std::optional<ActivityCategory> typedCategory(const std::string& typed) {
    const auto wanted = text::lowercased(text::trimmedOfBlanks(typed));
    for (const auto category : allActivityCategories)
        if (wanted == rawValue(category) || wanted == text::lowercased(label(category)))
            return category;
    return std::nullopt;
}

std::string categoryNames() {
    std::string names;
    for (const auto category : allActivityCategories)
        names.append(names.empty() ? "" : ", ").append(rawValue(category));
    return names;
}

ActivityCategory categoryOf(const Categorizer::Snapshot& snapshot, const Target& target) {
    return target.kind == CategoryKind::app ? snapshot.appCategory(target.name) : snapshot.category("", target.name);
}

Categorizer::Snapshot changed(Categorizer::Snapshot snapshot, const Target& target,
                              std::optional<ActivityCategory> category) {
    auto& overrides = target.kind == CategoryKind::app ? snapshot.appOverrides : snapshot.domainOverrides;
    overrides.erase(target.name);
    if (category)
        overrides.emplace(target.name, *category);
    return snapshot;
}

/// Says what would change among the recorded sessions, when `before` and `after` name what each belongs to.
template <class Naming>
int preview(const Locations& places, Naming before, Naming after) {
    return withStored(places, [&](Database* database) {
        ClassificationChanges changes;
        if (database)
            forEachSession(*database, SystemClock().now() + Seconds(1), [&](const ActivitySession& session) {
                changes.add(before(session), after(session), session);
            });
        print(changesText(changes.all(), outputStyle()) + "\n  Nothing was changed; without --preview it will be.\n");
        return done;
    });
}

// What a session belongs to, by name; the argument must outlive the answer.

auto categoryNaming(const Categorizer::Snapshot& snapshot) {
    return [&snapshot](const ActivitySession& session) {
        return std::string(label(snapshot.category(session.bundleID, session.domain)));
    };
}

auto projectNaming(const std::vector<ProjectRule>& rules) {
    return [&rules](const ActivitySession& session) {
        return ProjectRules::resolve(rules, session.title, session.url, session.project).value_or("no project");
    };
}

int changeCategory(const CategoryTarget& wanted, std::optional<ActivityCategory> category, bool isPreview) {
    const auto answer = resolved(wanted);
    if (const auto* why = std::get_if<std::string>(&answer))
        return refuse(*why);
    const auto& target = std::get<Target>(answer);
    const auto places = placesOrExit();
    Classification classification(places);
    auto& categorizer = classification.settings.categorizer();
    const auto before = categorizer.snapshot();
    const auto after = changed(before, target, category);
    if (isPreview)
        return preview(places, categoryNaming(before), categoryNaming(after));
    const bool isStored = target.kind == CategoryKind::app ? categorizer.setAppCategory(category, target.name)
                                                           : categorizer.setDomainCategory(category, target.name);
    if (!isStored)
        return failed; // the store has said why
    print(fmt::format("{} counts as {} now; before, it was {}.\n", text::fittedToColumns(target.name, 200),
                      label(categoryOf(after, target)), label(categoryOf(before, target))));
    return done;
}

/// The rules of the settings. Ones that cannot be read are not silently replaced by a command.
std::optional<std::vector<ProjectRule>> readableRules(Classification& classification) {
    auto rules = classification.settings.projectRules().rules();
    const auto stored = classification.store->get<SettingBytes>(settingKey::projectRules);
    if (!stored || decodedProjectRules(stored->bytes))
        return rules;
    complain(
        "the stored rules cannot be read and count as none; to begin anew: kestrioctl settings reset projectRules");
    return std::nullopt;
}

int storeRules(Classification& classification, const std::vector<ProjectRule>& rules) {
    if (!classification.settings.projectRules().setRules(rules))
        return failed; // the store has said why
    if (rules.empty())
        print("There are no rules left.\n");
    else
        print(ruleTable(rules, outputStyle()));
    return done;
}

/// The place of the rule with this number in a list of so many.
std::optional<std::size_t> placeOf(std::int64_t number, std::size_t count) {
    return number >= 1 && static_cast<std::uint64_t>(number) <= count
               ? std::optional(static_cast<std::size_t>(number - 1))
               : std::nullopt;
}

int refuseNumber(std::int64_t number, std::size_t count) {
    return refuse(count == 0 ? std::string("there are no rules; see: kestrioctl projects add --help")
                             : fmt::format("there is no rule {}; they go from 1 to {}. See: kestrioctl projects list",
                                           number, count));
}

/// What is wrong with a rule that a person typed.
std::optional<std::string> mistakeIn(const NewProjectRule& rule) {
    if (text::trimmedOfBlanks(rule.keyword).empty())
        return "the keyword must not be empty: such a rule never matches";
    if (!rule.project && !rule.ignore)
        return "which project? Give its name behind the keyword, or --ignore for none";
    if (rule.project && rule.ignore)
        return "--ignore stands in place of a project";
    if (rule.project && text::trimmedOfBlanks(*rule.project).empty())
        return "the project's name must not be empty; for none use --ignore";
    if (!encoded(std::vector{ProjectRule{{}, rule.keyword, rule.project.value_or("")}}))
        return "the rule is not valid UTF-8 text";
    return std::nullopt;
}

/// Says which earlier rule, if any, keeps a new one from ever being asked.
void warnOfEarlierRules(const std::vector<ProjectRule>& rules, std::size_t place) {
    const auto folded = [](const ProjectRule& rule) {
        return text::folded(text::trimmedOfBlanks(rule.keyword), text::Ignoring::caseOnly);
    };
    for (std::size_t i = 0; i < place; ++i)
        if (const auto earlier = folded(rules[i]);
            !earlier.empty() && folded(rules[place]).find(earlier) != std::string::npos) {
            complain(fmt::format("rule {} ({}) comes first and matches whatever this one does; see: "
                                 "kestrioctl projects move",
                                 i + 1, quoted(rules[i].keyword)));
            return;
        }
}

} // namespace

int listCategories(bool everything, bool json) {
    Classification classification(placesOrExit());
    const auto rows = categoryRows(classification.settings.categorizer().snapshot(),
                                   everything ? CategoryScope::everything : CategoryScope::chosen);
    if (json)
        printJSON(toJSON(rows));
    else if (rows.empty())
        complain("you have set no categories; the built-in ones: kestrioctl categories list --all");
    else
        print(categoryTable(rows, outputStyle()));
    return done;
}

int setCategory(const CategoryTarget& target, const std::string& category, bool preview) {
    const auto wanted = typedCategory(category);
    if (!wanted)
        return refuse(quoted(category) + " is no category; it must be one of " + categoryNames());
    return changeCategory(target, wanted, preview);
}

int resetCategory(const CategoryTarget& target, bool preview) {
    return changeCategory(target, std::nullopt, preview);
}

int listProjects(bool json) {
    Classification classification(placesOrExit());
    const auto rules = readableRules(classification);
    if (json)
        printJSON(toJSON(rules.value_or(std::vector<ProjectRule>())));
    else if (rules && rules->empty())
        complain("you have no project rules; add one with: kestrioctl projects add KEYWORD PROJECT");
    else if (rules)
        print(ruleTable(*rules, outputStyle()));
    return rules ? done : failed;
}

int addProject(const NewProjectRule& wanted) {
    if (const auto mistake = mistakeIn(wanted))
        return refuse(*mistake);
    const auto places = placesOrExit();
    Classification classification(places);
    const auto before = readableRules(classification);
    if (!before)
        return failed;
    const auto place = wanted.at ? placeOf(*wanted.at, before->size() + 1) : before->size();
    if (!place)
        return refuse(
            fmt::format("--at {} is no place in the list; it must be from 1 to {}", *wanted.at, before->size() + 1));
    auto after = *before;
    after.insert(after.begin() + static_cast<std::ptrdiff_t>(*place),
                 {freshUUID(), wanted.keyword, wanted.project.value_or("")});
    warnOfEarlierRules(after, *place);
    if (!wanted.preview)
        return storeRules(classification, after);
    return preview(places, projectNaming(*before), projectNaming(after));
}

int moveProject(std::int64_t number, std::int64_t to) {
    Classification classification(placesOrExit());
    auto rules = readableRules(classification);
    if (!rules)
        return failed;
    const auto from = placeOf(number, rules->size());
    const auto target = placeOf(to, rules->size());
    if (!from || !target)
        return refuseNumber(from ? to : number, rules->size());
    auto moved = std::move((*rules)[*from]);
    rules->erase(rules->begin() + static_cast<std::ptrdiff_t>(*from));
    rules->insert(rules->begin() + static_cast<std::ptrdiff_t>(*target), std::move(moved));
    return storeRules(classification, *rules);
}

int removeProject(std::int64_t number) {
    Classification classification(placesOrExit());
    auto rules = readableRules(classification);
    if (!rules)
        return failed;
    const auto place = placeOf(number, rules->size());
    if (!place)
        return refuseNumber(number, rules->size());
    rules->erase(rules->begin() + static_cast<std::ptrdiff_t>(*place));
    return storeRules(classification, *rules);
}

int explain(const ExplainOptions& options) {
    if (text::trimmedOfBlanks(options.app).empty())
        return refuse("--app wants the identifier of an application");
    Classification classification(placesOrExit());
    const auto bundleID = applicationID(options.app);
    const auto found =
        explanation({bundleID, options.name ? *options.name : applicationName(bundleID), options.title, options.url},
                    classification.settings.categorizer().snapshot(), ProjectDetector(projectHost(processEnvironment)),
                    readableRules(classification).value_or(std::vector<ProjectRule>()));
    if (options.json)
        printJSON(toJSON(found));
    else
        print(explanationText(found, outputStyle()));
    return done;
}

} // namespace kestrio
