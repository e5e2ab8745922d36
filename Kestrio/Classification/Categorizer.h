// Which category a stretch of activity belongs to. Nothing of it is stored with the activity: it is worked out when a
// report is built, from the application and the site, so that a change of mind holds for all that was ever recorded.
//
// The site decides before the application does, whatever the application is. Within a site's name the walk goes from
// the whole host to its parents, and at each level asks the person's own choice first and the built-in table second.
//
// A `Categorizer` lives as long as its program. Snapshots may be taken on any thread, changes are made on one, the one
// whose observers hear of them.
#pragma once

#include "Kestrio/Base/Signal.h"
#include "Kestrio/Classification/CategoryTables.h"
#include "Kestrio/Classification/StoredSetting.h"
#include "Kestrio/Model/Models.h"

#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kestrio {

/// What answered, or was asked in vain.
enum class CategorySource {
    siteOverride, // the person's choice for the site or a parent of it
    builtInSite,
    appOverride, // the person's choice for the application
    builtInApp,
    builtInPrefix, // applications of one maker, by the beginning of the identifier
    host,          // what this host's description of the application suggests
    nothing,       // and so the category is `other`
};

/// One question on the way to a category.
struct CategoryStep {
    CategorySource source;
    std::string asked; // the host, the identifier or the prefix that was looked up; empty for `nothing`
    std::optional<ActivityCategory> answer;

    friend bool operator==(const CategoryStep&, const CategoryStep&) = default;
};

class Categorizer {
public:
    /// By bundle identifier or by domain; found by any kind of text.
    using Overrides = std::unordered_map<std::string, ActivityCategory, TextHash, std::equal_to<>>;

    /// The form in which the settings keep overrides: to the category's raw text.
    using StoredOverrides = std::map<std::string, std::string>;

    /// What the host's own description of an application suggests, absent when it has none. Any thread; asked only
    /// for applications that nothing else knows, once per session of a report, so it should answer from memory.
    using HostHint = std::function<std::optional<ActivityCategory>(std::string_view bundleID)>;

    /// The overrides of one moment. A value, usable from any thread; it goes stale without harm.
    struct Snapshot {
        Overrides appOverrides;
        Overrides domainOverrides;
        HostHint hostHint = {};

        /// The category of one session; `other` at worst. An empty domain counts as none.
        ActivityCategory category(std::string_view bundleID, const std::optional<std::string>& domain) const;

        /// The category of the application itself, whatever it showed.
        ActivityCategory appCategory(std::string_view bundleID) const { return category(bundleID, std::nullopt); }

        /// All that `category` asks, in order; the last one is what answered.
        std::vector<CategoryStep> explained(std::string_view bundleID, const std::optional<std::string>& domain) const;
    };

    /// Reads both settings. Values that name no category are dropped, and stay out of the store at the next change.
    Categorizer(StoredSetting<StoredOverrides> apps, StoredSetting<StoredOverrides> domains, HostHint hostHint = {});

    Snapshot snapshot() const;

    /// Sets the person's choice for an application, or with an absent category takes it back. The identifier counts as
    /// it stands. Tells the observers. False when it could not be stored; it then holds in this process alone.
    bool setAppCategory(std::optional<ActivityCategory> category, const std::string& bundleID);

    /// The same for a site and all that is below it. Case and blanks around the domain do not count; for one that is
    /// empty then nothing happens at all.
    bool setDomainCategory(std::optional<ActivityCategory> category, std::string_view domain);

    /// Reads the settings again, after somebody else changed them; tells the observers if anything is different.
    void reload();

    /// The receiver is called after every change, on the thread that made it, with no lock held. Subscribing and
    /// dropping the token happen on that thread too.
    Subscription observe(std::function<void()> receiver) { return changed_.subscribe(std::move(receiver)); }

    /// The form in which a domain is stored and looked up; empty when nothing remains.
    static std::string normalizedDomain(std::string_view domain);

    /// The built-in answer alone.
    static std::optional<ActivityCategory> defaultCategory(std::string_view bundleID);

    /// The names under which a domain is looked up: itself, without its port, and then without one label after the
    /// other in front while two remain.
    static std::vector<std::string> hierarchy(std::string_view domain);

    /// The built-in sites.
    static const CategoryTable& defaultDomains() { return builtInDomains(); }

private:
    bool setOverride(Overrides& overrides, const StoredSetting<StoredOverrides>& stored, const std::string& key,
                     std::optional<ActivityCategory> category);

    const StoredSetting<StoredOverrides> storedApps_;
    const StoredSetting<StoredOverrides> storedDomains_;
    const HostHint hostHint_;
    // Guards both dictionaries, and keeps what is stored in step with them. Recursive, since a store that tells at once
    // of what is written may lead back to `reload`.
    mutable std::recursive_mutex lock_;
    Overrides apps_;
    Overrides domains_;
    Signal<> changed_;
};

} // namespace kestrio
