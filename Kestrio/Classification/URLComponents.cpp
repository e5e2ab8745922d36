#include "Kestrio/Classification/URLComponents.h"

#include "Kestrio/Base/Text.h"

#include <charconv>
#include <uriparser/Uri.h>

namespace kestrio {
namespace {

std::string_view view(const UriTextRangeA& range) {
    return range.first ? std::string_view(range.first, static_cast<std::size_t>(range.afterLast - range.first))
                       : std::string_view();
}

std::optional<std::string> present(const UriTextRangeA& range) {
    return range.first ? std::optional<std::string>(view(range)) : std::nullopt;
}

/// The library's result; it points into the text that was parsed.
class ParsedURI {
public:
    explicit ParsedURI(std::string_view text) {
        const char* errorAt = nullptr;
        // An empty view may point nowhere, which the library takes for a mistake.
        const char* begin = text.empty() ? "" : text.data();
        isValid_ = uriParseSingleUriExA(&uri_, begin, begin + text.size(), &errorAt) == URI_SUCCESS;
    }
    ~ParsedURI() {
        if (isValid_) // a failed parse has nothing left to free
            uriFreeUriMembersA(&uri_);
    }
    ParsedURI(const ParsedURI&) = delete;
    ParsedURI& operator=(const ParsedURI&) = delete;

    bool isValid() const { return isValid_; }
    const UriUriA* operator->() const { return &uri_; }

private:
    UriUriA uri_{};
    bool isValid_ = false;
};

std::optional<std::string> host(const ParsedURI& uri) {
    if (!uri->hostText.first)
        return std::nullopt;
    const auto text = view(uri->hostText);
    if (uri->hostData.ip6 || uri->hostData.ipFuture.first)
        return "[" + std::string(text) + "]";
    return removingPercentEncoding(text);
}

std::optional<std::uint64_t> port(std::string_view digits) {
    std::uint64_t number = 0;
    const auto* end = digits.data() + digits.size();
    const auto [stopped, error] = std::from_chars(digits.data(), end, number);
    return error == std::errc() && stopped == end ? std::optional(number) : std::nullopt;
}

std::string path(const ParsedURI& uri) {
    std::string encoded;
    bool needsSlash = uri->absolutePath || uri->hostText.first;
    for (const auto* segment = uri->pathHead; segment; segment = segment->next) {
        if (needsSlash)
            encoded += '/';
        encoded += view(segment->text);
        needsSlash = true;
    }
    if (!uri->pathHead && uri->absolutePath)
        encoded = "/";
    return removingPercentEncoding(encoded).value_or("");
}

std::optional<unsigned char> hexadecimal(std::string_view digits) {
    unsigned char byte = 0;
    const auto* end = digits.data() + digits.size();
    const auto [stopped, error] = std::from_chars(digits.data(), end, byte, 16);
    return digits.size() == 2 && error == std::errc() && stopped == end ? std::optional(byte) : std::nullopt;
}

bool isText(std::string_view bytes) {
    return text::fromUntrustedBytes(bytes) == bytes;
}

bool mayStandInFragment(char c) {
    const bool isLetterOrDigit = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    return isLetterOrDigit || std::string_view("-._~!$&'()*+,;=:@/?").find(c) != std::string_view::npos;
}

URLComponents::QueryItem queryItem(std::string_view text) {
    const auto equals = text.find('=');
    if (equals == std::string_view::npos)
        return {std::string(text), std::nullopt};
    return {std::string(text.substr(0, equals)), std::string(text.substr(equals + 1))};
}

} // namespace

std::optional<URLComponents> URLComponents::parsed(std::string_view text) {
    const ParsedURI uri(text);
    if (!uri.isValid())
        return std::nullopt;
    return URLComponents{present(uri->scheme), kestrio::host(uri), kestrio::port(view(uri->portText)),
                         kestrio::path(uri), present(uri->query)};
}

std::vector<URLComponents::QueryItem> URLComponents::percentEncodedQueryItems() const {
    std::vector<QueryItem> items;
    if (!query)
        return items;
    std::string_view rest(*query);
    for (auto end = rest.find('&'); end != std::string_view::npos; end = rest.find('&')) {
        items.push_back(queryItem(rest.substr(0, end)));
        rest.remove_prefix(end + 1);
    }
    items.push_back(queryItem(rest));
    return items;
}

std::optional<std::string> removingPercentEncoding(std::string_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '%') {
            bytes += text[at];
            continue;
        }
        const auto byte = hexadecimal(text.substr(at + 1, 2));
        if (!byte)
            return std::nullopt;
        bytes += static_cast<char>(*byte);
        at += 2;
    }
    return isText(bytes) ? std::optional(std::move(bytes)) : std::nullopt;
}

std::optional<std::string> addingPercentEncoding(std::string_view text) {
    if (!isText(text))
        return std::nullopt;
    constexpr char digits[] = "0123456789ABCDEF";
    std::string encoded;
    encoded.reserve(text.size());
    for (const char c : text) {
        if (mayStandInFragment(c)) {
            encoded += c;
            continue;
        }
        const auto byte = static_cast<unsigned char>(c);
        encoded += {'%', digits[byte >> 4], digits[byte & 15]};
    }
    return encoded;
}

} // namespace kestrio
