#include "Programs/CommandLine/Explanation.h"

#include "Kestrio/Activity/BrowserInspector.h"
#include "Kestrio/Base/Text.h"
#include "Kestrio/Classification/TextTools.h"
#include "Programs/CommandLine/TableParts.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

using JSON = nlohmann::ordered_json;
using Where = ProjectResolution::Where;

constexpr std::size_t labelColumns = 13;

/// The title as the recorder keeps it: of a tab that was read, or of a window.
std::string recordedTitle(const ExplainedWindow& window) {
    const bool isWindowOfBrowser = !window.url && BrowserInspector::isBrowser(window.bundleID);
    const auto title =
        isWindowOfBrowser ? BrowserInspector::stripBrowserName(window.title, window.appName) : window.title;
    return TitleCleaner::removingAppName(TitleCleaner::clean(title), window.appName);
}

std::string_view rawValue(CategorySource source) {
    switch (source) {
    case CategorySource::siteOverride: return "siteOverride";
    case CategorySource::builtInSite: return "builtInSite";
    case CategorySource::appOverride: return "appOverride";
    case CategorySource::builtInApp: return "builtInApp";
    case CategorySource::builtInPrefix: return "builtInPrefix";
    case CategorySource::host: return "host";
    case CategorySource::nothing: return "nothing";
    }
    return "";
}

std::string_view rawValue(Where where) {
    switch (where) {
    case Where::title: return "title";
    case Where::url: return "url";
    case Where::detected: return "detected";
    }
    return "";
}

std::string question(const CategoryStep& step) {
    switch (step.source) {
    case CategorySource::siteOverride: return "your choice for the site " + step.asked;
    case CategorySource::builtInSite: return "the built-in table, for " + step.asked;
    case CategorySource::appOverride: return "your choice for the application";
    case CategorySource::builtInApp: return "the built-in table, for the application";
    case CategorySource::builtInPrefix:
        return step.answer ? "the built-in rule for all of " + step.asked + "*" : "the built-in rules for makers";
    case CategorySource::host: return "what the application says of itself";
    case CategorySource::nothing: return "where nothing answers";
    }
    return {};
}

std::string_view inWords(TitleFamily family) {
    switch (family) {
    case TitleFamily::editor: return "read with the file before the project";
    case TitleFamily::projectFirst: return "read with the project before the file";
    case TitleFamily::projectInBrackets: return "read with the project in brackets";
    case TitleFamily::terminal: return "read with the folder's path, or a name before the shell";
    case TitleFamily::folderInBrackets: return "read with the folder in brackets";
    case TitleFamily::folderBehindFile: return "read with the file before its folder and the project";
    case TitleFamily::sessionFirst: return "read with the session before the file";
    }
    return {};
}

std::string_view inWords(Where where) {
    switch (where) {
    case Where::title: return "in the title";
    case Where::url: return "in the address";
    case Where::detected: return "in the detected project";
    }
    return {};
}

class Text {
public:
    Text(const Explanation& explained, const TableStyle& style)
        : explained_(explained), paint_(style.hasColour), width_(std::max<std::size_t>(style.width, 40)) {}

    std::string text() {
        addWindow();
        addCategory();
        addProject();
        return text_;
    }

private:
    void addWindow() {
        const auto& window = explained_.window;
        fact("Application", window.bundleID == window.appName || window.appName.empty()
                                ? window.bundleID
                                : fmt::format("{} ({})", window.bundleID, window.appName));
        if (!window.title.empty())
            fact("Title", window.title);
        if (window.url)
            fact("Site", explained_.domain.value_or("none: not the address of a web page"));
    }

    void addCategory() {
        heading("Category", std::string(label(*explained_.category.back().answer)));
        for (const auto& step : explained_.category)
            reason(question(step), step.answer ? std::string(label(*step.answer)) : "–");
    }

    void addProject() {
        heading("Project", explained_.resolution.project.value_or("none"));
        const auto& reading = explained_.reading;
        if (!reading.family)
            reason(explained_.window.title.empty() ? "there is no title" : "no project is read from its titles", "–");
        else
            reason("the title " + std::string(inWords(*reading.family)), reading.read.value_or("–"));
        if (reading.read && !reading.project)
            reason("\"" + text::fittedToColumns(*reading.read, 30) + "\" is no name for a project", "–");
        else if (reading.project != reading.read)
            reason("without what editors append", *reading.project);
        if (explained_.rule)
            reason(fmt::format("your rule {}, \"{}\" {}", explained_.resolution.match->rule + 1,
                               text::fittedToColumns(explained_.rule->keyword, 30),
                               inWords(explained_.resolution.match->where)),
                   explained_.resolution.project.value_or("no project"));
        else
            reason("none of your rules matches", "–");
    }

    void fact(const std::string& name, const std::string& value) {
        text_ += fmt::format("  {}{}\n", paint_.dim(padded(name, labelColumns)),
                             text::fittedToColumns(value, width_ - labelColumns - 2));
    }

    void heading(const std::string& name, const std::string& value) {
        text_ += "\n";
        text_ += fmt::format("  {}{}\n", paint_.dim(padded(name, labelColumns)),
                             paint_.bold(text::fittedToColumns(value, width_ - labelColumns - 2)));
    }

    void reason(const std::string& asked, const std::string& answer) {
        // Four blanks before, three columns for the arrow; a short answer leaves its room to the question.
        const auto room = width_ - 7;
        const auto shown =
            text::fittedToColumns(asked, std::max(room * 2 / 3, room - std::min(room, text::columns(answer))));
        const auto rest = room - text::columns(shown);
        const auto line = fmt::format("{} → {}", shown, text::fittedToColumns(answer, rest));
        text_ += "    " + (answer == "–" ? paint_.dim(line) : line) + "\n";
    }

    const Explanation& explained_;
    const Painter paint_;
    const std::size_t width_;
    std::string text_;
};

template <class Value>
JSON orNull(const std::optional<Value>& value) {
    return value ? JSON(*value) : JSON();
}

} // namespace

Explanation explanation(ExplainedWindow window, const Categorizer::Snapshot& categories,
                        const ProjectDetector& detector, const std::vector<ProjectRule>& rules) {
    window.title = recordedTitle(window);
    Explanation result;
    result.domain = window.url ? URLTools::domain(*window.url) : std::nullopt;
    result.category = categories.explained(window.bundleID, result.domain);
    result.reading = detector.reading(window.bundleID, window.appName, window.title);
    result.resolution = ProjectRules::resolution(rules, window.title, window.url, result.reading.project);
    if (result.resolution.match)
        result.rule = rules[result.resolution.match->rule];
    result.window = std::move(window);
    return result;
}

std::string explanationText(const Explanation& explanation, const TableStyle& style) {
    return Text(explanation, style).text();
}

nlohmann::ordered_json toJSON(const Explanation& explanation) {
    auto steps = JSON::array();
    for (const auto& step : explanation.category)
        steps.push_back({{"source", rawValue(step.source)},
                         {"asked", step.asked},
                         {"answer", step.answer ? JSON(kestrio::rawValue(*step.answer)) : JSON()}});
    const auto& reading = explanation.reading;
    JSON rule;
    if (explanation.rule)
        rule = {{"number", explanation.resolution.match->rule + 1},
                {"keyword", explanation.rule->keyword},
                {"project", explanation.rule->project},
                {"where", rawValue(explanation.resolution.match->where)}};
    return {{"bundleID", explanation.window.bundleID},
            {"appName", explanation.window.appName},
            {"title", explanation.window.title},
            {"url", orNull(explanation.window.url)},
            {"domain", orNull(explanation.domain)},
            {"category", kestrio::rawValue(*explanation.category.back().answer)},
            {"categorySteps", std::move(steps)},
            {"project", orNull(explanation.resolution.project)},
            {"titleFamily", reading.family ? JSON(kestrio::rawValue(*reading.family)) : JSON()},
            {"titleRead", orNull(reading.read)},
            {"detectedProject", orNull(reading.project)},
            {"rule", std::move(rule)}};
}

} // namespace kestrio
