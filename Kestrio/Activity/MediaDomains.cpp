#include "Kestrio/Activity/MediaDomains.h"

#include "Kestrio/Classification/TextTools.h"

#include <algorithm>

namespace kestrio {
namespace {

bool belongsTo(std::string_view domain, std::string_view site) {
    if (!domain.ends_with(site))
        return false;
    domain.remove_suffix(site.size());
    return domain.empty() || domain.ends_with('.');
}

} // namespace

bool isMediaPage(std::string_view url) {
    if (YouTube::videoID(url))
        return true;
    const auto domain = URLTools::domain(url);
    return domain && std::any_of(mediaDomains.begin(), mediaDomains.end(),
                                 [&](std::string_view site) { return belongsTo(*domain, site); });
}

} // namespace kestrio
