#include "Kestrio/Platform/Linux/BrowserAnswers.h"

#include "Kestrio/Base/Text.h"
#include "Kestrio/Platform/BrowserReader.h"

#include <algorithm>
#include <fmt/format.h>
#include <string_view>

namespace kestrio {
namespace {

constexpr char betweenFields = '\x1F';
constexpr char betweenWindows = '\x1E';
constexpr char betweenTabs = '\x1D';

std::string clean(std::string_view untrusted) {
    auto text = text::fromUntrustedBytes(untrusted);
    std::erase_if(text, [](char c) { return c >= '\x1C' && c <= '\x1F'; });
    return text;
}

std::string joined(const std::vector<std::string>& fields, char separator) {
    std::string text;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (i > 0)
            text += separator;
        text += fields[i];
    }
    return text;
}

std::vector<std::string> fieldsOf(const Rectangle& bounds, const char* mode) {
    std::vector<std::string> fields;
    for (const double edge : {bounds.x, bounds.y, bounds.x + bounds.width, bounds.y + bounds.height})
        fields.push_back(fmt::format("{}", edge));
    fields.emplace_back(mode);
    return fields;
}

} // namespace

std::string tabText(const BrowserPage& page) {
    return joined({clean(page.address), clean(page.title), "normal"}, betweenFields);
}

std::string privateTabText() {
    return joined({std::string(privateAddress), "", "incognito"}, betweenFields);
}

std::string windowText(const Rectangle& bounds, const BrowserPage& activeTab, const std::vector<BrowserPage>& tabs) {
    std::vector<std::string> addresses;
    std::vector<std::string> titles;
    for (const auto& tab : tabs) {
        addresses.push_back(clean(tab.address));
        titles.push_back(clean(tab.title));
    }
    auto fields = fieldsOf(bounds, "normal");
    fields.insert(fields.end(), {clean(activeTab.address), clean(activeTab.title), joined(addresses, betweenTabs),
                                 joined(titles, betweenTabs)});
    return joined(fields, betweenFields);
}

std::string privateWindowText(const Rectangle& bounds) {
    auto fields = fieldsOf(bounds, "incognito");
    fields.insert(fields.end(), {std::string(privateAddress), "", std::string(privateAddress), ""});
    return joined(fields, betweenFields);
}

std::string windowsText(const std::vector<std::string>& pieces) {
    return joined(pieces, betweenWindows);
}

} // namespace kestrio
