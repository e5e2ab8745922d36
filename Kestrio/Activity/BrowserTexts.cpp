#include "Kestrio/Activity/BrowserTexts.h"

#include "Kestrio/Base/Text.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace kestrio::BrowserTexts {
namespace {

/// An empty text is one empty piece.
std::vector<std::string_view> split(std::string_view text, char at) {
    std::vector<std::string_view> pieces;
    for (auto end = text.find(at); end != std::string_view::npos; end = text.find(at)) {
        pieces.push_back(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
    pieces.push_back(text);
    return pieces;
}

double edge(std::string_view field) {
    auto digits = text::trimmed(field);
    if (digits.starts_with('+') && !digits.starts_with("+-"))
        digits.remove_prefix(1);
    double value = 0;
    const auto* end = digits.data() + digits.size();
    const auto [stopped, error] = std::from_chars(digits.data(), end, value);
    const bool isNumber = error == std::errc() && stopped == end && std::isfinite(value);
    return isNumber ? value : 0;
}

Rectangle bounds(std::string_view left, std::string_view top, std::string_view right, std::string_view bottom) {
    return {edge(left), edge(top), edge(right) - edge(left), edge(bottom) - edge(top)};
}

bool isPrivate(std::string_view mode) {
    return mode == "incognito";
}

BrowserTab tab(std::string_view url, std::string_view title, bool isPrivate) {
    return {std::string(url), std::string(title), isPrivate};
}

std::vector<BrowserTab> tabs(std::string_view addresses, std::string_view titles, bool isPrivate) {
    const auto urls = split(addresses, betweenTabs);
    const auto names = split(titles, betweenTabs);
    std::vector<BrowserTab> all;
    for (std::size_t at = 0; at < std::min(urls.size(), names.size()); ++at)
        all.push_back(tab(urls[at], names[at], isPrivate));
    return all;
}

std::optional<BrowserWindow> window(std::string_view text) {
    const auto fields = split(text, separator);
    if (fields.size() < 9)
        return std::nullopt;
    const bool isHidden = isPrivate(fields[4]);
    return BrowserWindow{bounds(fields[0], fields[1], fields[2], fields[3]), isHidden,
                         tab(fields[5], fields[6], isHidden), tabs(fields[7], fields[8], isHidden)};
}

} // namespace

std::optional<BrowserTab> frontTab(std::string_view text) {
    const auto fields = split(text, separator);
    if (fields.size() < 2 || fields[0].empty())
        return std::nullopt;
    return tab(fields[0], fields[1], fields.size() > 2 && isPrivate(fields[2]));
}

std::vector<BrowserWindow> windows(std::string_view text) {
    std::vector<BrowserWindow> all;
    for (const auto piece : split(text, betweenWindows))
        if (auto read = window(piece))
            all.push_back(std::move(*read));
    return all;
}

} // namespace kestrio::BrowserTexts
