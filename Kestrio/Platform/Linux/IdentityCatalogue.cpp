#include "Kestrio/Platform/Linux/IdentityCatalogue.h"

#include "Kestrio/Platform/Linux/EmbeddedCatalogue.h"

#include <algorithm>

namespace kestrio {
namespace {

constexpr char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Orders by the bytes, without the case of ASCII letters.
int compare(std::string_view a, std::string_view b) {
    const auto shared = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < shared; ++i)
        if (const int difference = lower(a[i]) - lower(b[i]))
            return difference;
    return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

bool startsWith(std::string_view text, std::string_view prefix) {
    return text.size() >= prefix.size() && compare(text.substr(0, prefix.size()), prefix) == 0;
}

/// The tool that installs these applications adds a UUID to the id of each installation.
std::string_view withoutInstallation(std::string_view desktopID) {
    constexpr std::size_t uuid = 36;
    if (desktopID.size() <= uuid + 1 || desktopID[desktopID.size() - uuid - 1] != '-')
        return desktopID;
    const auto tail = desktopID.substr(desktopID.size() - uuid);
    const bool isUUID = tail[8] == '-' && tail[13] == '-' && tail[18] == '-' && tail[23] == '-';
    return isUUID ? desktopID.substr(0, desktopID.size() - uuid - 1) : desktopID;
}

} // namespace

IdentityCatalogue::IdentityCatalogue(const std::vector<CatalogueText>& texts) {
    for (const auto& text : texts)
        add(text);
    std::stable_sort(rows_.begin(), rows_.end(),
                     [](const Row& a, const Row& b) { return compare(a.name, b.name) < 0; });
    std::vector<Row> unique;
    unique.reserve(rows_.size());
    for (const auto& row : rows_) {
        if (unique.empty() || compare(unique.back().name, row.name) != 0)
            unique.push_back(row);
        else if (unique.back().identifier != row.identifier)
            mistakes_.push_back("\"" + std::string(row.name) + "\" is " + std::string(unique.back().identifier) +
                                " and " + std::string(row.identifier));
    }
    rows_ = std::move(unique);
}

const IdentityCatalogue& IdentityCatalogue::builtIn() {
    static const IdentityCatalogue catalogue({{std::nullopt, embedded::applications},
                                              {IdentityRole::lockScreen, embedded::lockScreens},
                                              {IdentityRole::prompt, embedded::prompts},
                                              {IdentityRole::essential, embedded::essentials}});
    return catalogue;
}

void IdentityCatalogue::add(const CatalogueText& text) {
    for (auto rest = text.text; !rest.empty();) {
        const auto end = std::min(rest.find('\n'), rest.size());
        addLine(rest.substr(0, end), text.role);
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
}

void IdentityCatalogue::addLine(std::string_view line, std::optional<IdentityRole> role) {
    if (line.empty() || line.starts_with('#'))
        return;
    const auto identifier = line.substr(0, line.find('\t'));
    while (true) {
        const auto end = line.find('\t');
        const auto name = line.substr(0, end);
        if (name.empty() || name.front() == ' ')
            mistakes_.push_back("an empty name, or a blank before one, at " + std::string(identifier));
        else
            rows_.push_back({name, identifier});
        if (end == std::string_view::npos)
            break;
        line.remove_prefix(end + 1);
    }
    if (role)
        members_[static_cast<std::size_t>(*role)].push_back(identifier);
}

std::optional<std::string_view> IdentityCatalogue::identifier(std::string_view name) const {
    const auto row = std::lower_bound(rows_.begin(), rows_.end(), name, [](const Row& a, std::string_view wanted) {
        return compare(a.name, wanted) < 0;
    });
    return row != rows_.end() && compare(row->name, name) == 0 ? std::optional(row->identifier) : std::nullopt;
}

std::string IdentityCatalogue::identifierOfDesktopID(std::string_view desktopID) const {
    if (const auto known = identifier(desktopID))
        return std::string(*known);
    constexpr std::string_view family = "jetbrains-";
    if (!startsWith(desktopID, family))
        return std::string(desktopID);
    const auto product = withoutInstallation(desktopID);
    if (const auto known = identifier(product))
        return std::string(*known);
    std::string result = "com.jetbrains.";
    for (const char c : product.substr(family.size()))
        result += lower(c);
    return result;
}

std::vector<std::string_view> IdentityCatalogue::namesOf(std::string_view identifier) const {
    std::vector<std::string_view> names;
    for (const auto& row : rows_)
        if (row.identifier == identifier)
            names.push_back(row.name);
    return names;
}

std::string_view categoryOfDesktopCategories(std::string_view categories) {
    // The order decides for a file that names several: what an application is for comes before the trade it belongs
    // to, a mail program in an office suite is for mail, a cutting desk is no film.
    struct Rule {
        std::string_view desktop;
        std::string_view activity;
    };
    static constexpr Rule rules[] = {
        {"InstantMessaging", "communication"},
        {"Email", "communication"},
        {"Chat", "communication"},
        {"IRCClient", "communication"},
        {"VideoConference", "communication"},
        {"Telephony", "communication"},
        {"IDE", "development"},
        {"Development", "development"},
        {"TerminalEmulator", "development"},
        {"AudioVideoEditing", "work"},
        {"Office", "work"},
        {"Graphics", "work"},
        {"Education", "learning"},
        {"Science", "learning"},
        {"AudioVideo", "entertainment"},
        {"Audio", "entertainment"},
        {"Video", "entertainment"},
        {"Game", "entertainment"},
    };
    for (const auto& rule : rules)
        for (auto rest = categories; !rest.empty();) {
            const auto end = std::min(rest.find(';'), rest.size());
            if (rest.substr(0, end) == rule.desktop)
                return rule.activity;
            rest.remove_prefix(std::min(end + 1, rest.size()));
        }
    return "other";
}

} // namespace kestrio
