#include "Kestrio/Classification/Categorizer.h"

#include "Kestrio/Base/Text.h"

#include <algorithm>

namespace kestrio {
namespace {

/// Whether splitting the host at its dots leaves an empty piece.
bool hasEmptyLabel(std::string_view host) {
    return host.starts_with('.') || host.ends_with('.') || host.find("..") != std::string_view::npos;
}

std::string withoutEmptyLabels(std::string_view host) {
    std::string result;
    while (!host.empty()) {
        const auto label = host.substr(0, host.find('.'));
        host.remove_prefix(std::min(label.size() + 1, host.size()));
        if (!label.empty())
            result.append(result.empty() ? "" : ".").append(label);
    }
    return result;
}

/// Calls `visit` with one name after the other under which the domain is looked up, until it answers true. Whether it
/// did. A usual domain costs no allocation.
template <class Visit>
bool visitHierarchy(std::string_view domain, Visit visit) {
    if (visit(domain))
        return true;
    const auto colon = domain.find(':');
    const auto host = domain.substr(0, colon);
    if (colon != std::string_view::npos && visit(host))
        return true;
    const auto tidied = hasEmptyLabel(host) ? withoutEmptyLabels(host) : std::string();
    auto rest = hasEmptyLabel(host) ? std::string_view(tidied) : host;
    for (auto labels = std::count(rest.begin(), rest.end(), '.') + 1; labels > 2; --labels) {
        rest.remove_prefix(rest.find('.') + 1);
        if (visit(rest))
            return true;
    }
    return false;
}

template <class Table>
std::optional<ActivityCategory> lookedUp(const Table& table, std::string_view key) {
    const auto found = table.find(key);
    return found == table.end() ? std::nullopt : std::optional(found->second);
}

/// The one account of how a category comes about. `told(source, asked, answer)` hears every question with its answer.
template <class Told>
class Decision {
public:
    Decision(const Categorizer::Snapshot& snapshot, const Told& told) : snapshot_(snapshot), told_(told) {}

    ActivityCategory category(std::string_view bundleID, std::string_view domain) {
        return bySite(domain) || byApp(bundleID) ? *answer_ : byNothing();
    }

    std::optional<ActivityCategory> builtIn(std::string_view bundleID) {
        return byTable(bundleID) || byPrefix(bundleID) ? answer_ : std::nullopt;
    }

private:
    bool bySite(std::string_view domain) {
        return !domain.empty() && visitHierarchy(domain, [this](std::string_view host) {
            return ask(CategorySource::siteOverride, host, lookedUp(snapshot_.domainOverrides, host)) ||
                   ask(CategorySource::builtInSite, host, lookedUp(builtInDomains(), host));
        });
    }

    bool byApp(std::string_view bundleID) {
        return ask(CategorySource::appOverride, bundleID, lookedUp(snapshot_.appOverrides, bundleID)) ||
               builtIn(bundleID) || byHost(bundleID);
    }

    bool byTable(std::string_view bundleID) {
        return ask(CategorySource::builtInApp, bundleID, lookedUp(builtInApps(), bundleID));
    }

    bool byPrefix(std::string_view bundleID) {
        const auto* rule = builtInPrefix(bundleID);
        return ask(CategorySource::builtInPrefix, rule ? rule->prefix : bundleID,
                   rule ? std::optional(rule->category) : std::nullopt);
    }

    bool byHost(std::string_view bundleID) {
        return ask(CategorySource::host, bundleID, snapshot_.hostHint ? snapshot_.hostHint(bundleID) : std::nullopt);
    }

    ActivityCategory byNothing() {
        ask(CategorySource::nothing, "", ActivityCategory::other);
        return ActivityCategory::other;
    }

    bool ask(CategorySource source, std::string_view asked, std::optional<ActivityCategory> answer) {
        told_(source, asked, answer);
        answer_ = answer;
        return answer.has_value();
    }

    const Categorizer::Snapshot& snapshot_;
    const Told& told_;
    std::optional<ActivityCategory> answer_;
};

constexpr auto unheard = [](CategorySource, std::string_view, std::optional<ActivityCategory>) {};

/// An empty domain stands for none.
std::string_view siteOf(const std::optional<std::string>& domain) {
    return domain ? std::string_view(*domain) : std::string_view();
}

Categorizer::Overrides overrides(const StoredSetting<Categorizer::StoredOverrides>& stored) {
    Categorizer::Overrides result;
    for (const auto& [key, text] : stored.read().value_or(Categorizer::StoredOverrides()))
        if (const auto category = activityCategory(text))
            result.emplace(key, *category);
    return result;
}

Categorizer::StoredOverrides toStored(const Categorizer::Overrides& overrides) {
    Categorizer::StoredOverrides result;
    for (const auto& [key, category] : overrides)
        result.emplace(key, rawValue(category));
    return result;
}

} // namespace

ActivityCategory Categorizer::Snapshot::category(std::string_view bundleID,
                                                 const std::optional<std::string>& domain) const {
    return Decision(*this, unheard).category(bundleID, siteOf(domain));
}

std::vector<CategoryStep> Categorizer::Snapshot::explained(std::string_view bundleID,
                                                           const std::optional<std::string>& domain) const {
    std::vector<CategoryStep> steps;
    const auto told = [&](CategorySource source, std::string_view asked, std::optional<ActivityCategory> answer) {
        steps.push_back({source, std::string(asked), answer});
    };
    Decision(*this, told).category(bundleID, siteOf(domain));
    return steps;
}

Categorizer::Categorizer(StoredSetting<StoredOverrides> apps, StoredSetting<StoredOverrides> domains, HostHint hostHint)
    : storedApps_(std::move(apps)),
      storedDomains_(std::move(domains)),
      hostHint_(std::move(hostHint)),
      apps_(overrides(storedApps_)),
      domains_(overrides(storedDomains_)) {}

Categorizer::Snapshot Categorizer::snapshot() const {
    const std::lock_guard guard(lock_);
    return {apps_, domains_, hostHint_};
}

bool Categorizer::setAppCategory(std::optional<ActivityCategory> category, const std::string& bundleID) {
    const bool isStored = setOverride(apps_, storedApps_, bundleID, category);
    changed_.emit();
    return isStored;
}

bool Categorizer::setDomainCategory(std::optional<ActivityCategory> category, std::string_view domain) {
    const auto key = normalizedDomain(domain);
    if (key.empty())
        return true;
    const bool isStored = setOverride(domains_, storedDomains_, key, category);
    changed_.emit();
    return isStored;
}

bool Categorizer::setOverride(Overrides& overrides, const StoredSetting<StoredOverrides>& stored,
                              const std::string& key, std::optional<ActivityCategory> category) {
    const std::lock_guard guard(lock_);
    if (category)
        overrides.insert_or_assign(key, *category);
    else
        overrides.erase(key);
    return stored.write(toStored(overrides));
}

void Categorizer::reload() {
    {
        const std::lock_guard guard(lock_);
        auto apps = overrides(storedApps_);
        auto domains = overrides(storedDomains_);
        if (apps == apps_ && domains == domains_)
            return;
        apps_ = std::move(apps);
        domains_ = std::move(domains);
    }
    changed_.emit();
}

std::string Categorizer::normalizedDomain(std::string_view domain) {
    return std::string(text::trimmedOfBlanks(text::lowercased(domain)));
}

std::optional<ActivityCategory> Categorizer::defaultCategory(std::string_view bundleID) {
    return Decision(Snapshot(), unheard).builtIn(bundleID);
}

std::vector<std::string> Categorizer::hierarchy(std::string_view domain) {
    std::vector<std::string> names;
    visitHierarchy(domain, [&](std::string_view name) {
        names.emplace_back(name);
        return false;
    });
    return names;
}

} // namespace kestrio
