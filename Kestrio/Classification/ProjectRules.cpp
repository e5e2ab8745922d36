#include "Kestrio/Base/Text.h"
#include "Kestrio/Classification/ProjectDetection.h"

#include <nlohmann/json.hpp>

namespace kestrio {
namespace {

using text::FoldedText;
using text::Ignoring;
using Where = ProjectResolution::Where;

std::optional<FoldedText> caseless(const std::optional<std::string>& text) {
    return text ? std::optional<FoldedText>(std::in_place, *text, Ignoring::caseOnly) : std::nullopt;
}

/// The texts of one session, for looking for one keyword after the other. Accents are passed over in the title alone:
/// it is written for people, the others are names.
class SearchedTexts {
public:
    SearchedTexts(std::string_view title, const std::optional<std::string>& url,
                  const std::optional<std::string>& detected)
        : title_(title, Ignoring::caseAndDiacritics), url_(caseless(url)), detected_(caseless(detected)) {}

    /// The first of the three that holds the keyword.
    std::optional<Where> placeOf(std::string_view keyword) const {
        if (title_.contains(keyword))
            return Where::title;
        if (url_ && url_->contains(keyword))
            return Where::url;
        if (detected_ && detected_->contains(keyword))
            return Where::detected;
        return std::nullopt;
    }

private:
    const FoldedText title_;
    const std::optional<FoldedText> url_;
    const std::optional<FoldedText> detected_;
};

std::optional<std::string> unlessEmpty(std::string_view name) {
    return name.empty() ? std::nullopt : std::optional<std::string>(name);
}

std::vector<ProjectRule> readRules(const StoredSetting<std::string>& stored) {
    const auto json = stored.read();
    return json ? decodedProjectRules(*json).value_or(std::vector<ProjectRule>()) : std::vector<ProjectRule>();
}

/// The text of a member; null unless there is one.
const std::string* member(const nlohmann::json& object, const char* key) {
    const auto found = object.find(key);
    return found == object.end() ? nullptr : found->get_ptr<const std::string*>();
}

std::optional<ProjectRule> decodedRule(const nlohmann::json& json) {
    if (!json.is_object())
        return std::nullopt;
    const auto* id = member(json, "id");
    const auto* keyword = member(json, "keyword");
    const auto* project = member(json, "project");
    const auto uuid = id ? tindra::uuid(*id) : std::nullopt;
    if (!uuid || !keyword || !project)
        return std::nullopt;
    return ProjectRule{*uuid, *keyword, *project};
}

} // namespace

ProjectRules::ProjectRules(StoredSetting<std::string> stored) : stored_(std::move(stored)), list_(readRules(stored_)) {}

std::vector<ProjectRule> ProjectRules::rules() const {
    const std::lock_guard guard(lock_);
    return list_;
}

bool ProjectRules::setRules(std::vector<ProjectRule> rules) {
    bool isStored = false;
    {
        const std::lock_guard guard(lock_);
        list_ = std::move(rules);
        const auto json = encoded(list_);
        isStored = json && stored_.write(*json);
    }
    changed_.emit();
    return isStored;
}

void ProjectRules::reload() {
    {
        const std::lock_guard guard(lock_);
        auto rules = readRules(stored_);
        if (rules == list_)
            return;
        list_ = std::move(rules);
    }
    changed_.emit();
}

ProjectResolution ProjectRules::resolution(const std::vector<ProjectRule>& rules, std::string_view title,
                                           const std::optional<std::string>& url,
                                           const std::optional<std::string>& detected) {
    if (rules.empty()) // as for most people: then the texts need not be looked at
        return {detected, std::nullopt};
    const SearchedTexts texts(title, url, detected);
    for (std::size_t i = 0; i < rules.size(); ++i)
        if (const auto where = texts.placeOf(text::trimmedOfBlanks(rules[i].keyword)))
            return {unlessEmpty(text::trimmedOfBlanks(rules[i].project)), ProjectResolution::Match{i, *where}};
    return {detected, std::nullopt};
}

std::optional<std::string> encoded(const std::vector<ProjectRule>& rules) {
    auto json = nlohmann::ordered_json::array();
    for (const auto& rule : rules)
        json.push_back({{"id", tindra::text(rule.id)}, {"keyword", rule.keyword}, {"project", rule.project}});
    try {
        return json.dump();
    } catch (const nlohmann::ordered_json::exception&) {
        return std::nullopt;
    }
}

std::optional<std::vector<ProjectRule>> decodedProjectRules(std::string_view json) {
    const auto array = nlohmann::json::parse(json, nullptr, /*allow_exceptions=*/false);
    if (!array.is_array())
        return std::nullopt;
    std::vector<ProjectRule> rules;
    for (const auto& each : array) {
        auto rule = decodedRule(each);
        if (!rule)
            return std::nullopt;
        rules.push_back(std::move(*rule));
    }
    return rules;
}

} // namespace kestrio
