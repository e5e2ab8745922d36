#include "Programs/Agent/HostClassification.h"

#include "Kestrio/Platform/Linux/Account.h"
#include "Kestrio/Platform/Linux/CategoryHints.h"
#include "Kestrio/Platform/Linux/TitleFamilies.h"

#include <memory>

namespace kestrio {

ProjectHost projectHost(const Environment& environment) {
    auto account = currentAccount(environment);
    ProjectHost host{std::move(account.name), std::move(account.home), std::move(account.host), {}};
    for (const auto& member : titleFamilyMembers())
        if (const auto family = titleFamily(member.family))
            host.applications.emplace(member.bundleID, *family);
    return host;
}

Categorizer::HostHint hostHint(const Environment& environment, const Clock& clock) {
    const auto hints =
        std::make_shared<CategoryHints>(applicationFolders(environment), clock, IdentityCatalogue::builtIn());
    return [hints](std::string_view bundleID) -> std::optional<ActivityCategory> {
        const auto text = hints->category(bundleID);
        return text ? activityCategory(*text) : std::nullopt;
    };
}

} // namespace kestrio
