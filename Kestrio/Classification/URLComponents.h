// The parts of an address by RFC 3986. A value; its functions are pure, and callable from any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrio {

struct URLComponents {
    struct QueryItem {
        std::string name;                 // both still percent-encoded
        std::optional<std::string> value; // absent without an equals sign

        friend bool operator==(const QueryItem&, const QueryItem&) = default;
    };

    std::optional<std::string> scheme;
    /// Without percent encoding; a literal IPv6 address keeps its brackets. Absent when the address has no authority,
    /// or when its host is not a text.
    std::optional<std::string> host;
    /// Absent when none stands there, or one that no machine has room for.
    std::optional<std::uint64_t> port;
    /// Without percent encoding; empty when there is none, or when it is not a text.
    std::string path;
    /// Still percent-encoded, without the question mark.
    std::optional<std::string> query;

    /// Strict: absent for a text that is neither a URI nor a relative reference to the letter.
    static std::optional<URLComponents> parsed(std::string_view text);

    /// The query cut at "&", in order; none without a query.
    std::vector<QueryItem> percentEncodedQueryItems() const;

    friend bool operator==(const URLComponents&, const URLComponents&) = default;
};

/// The text with each percent sign and its two hexadecimal digits turned back into the byte that they stand for, once.
/// Absent when a percent sign stands without them, or when the bytes are not a text: UTF-8 without U+0000.
std::optional<std::string> removingPercentEncoding(std::string_view text);

/// The text with everything encoded that may not stand in the fragment of an address, percent signs among it. Absent
/// when the bytes are not a text.
std::optional<std::string> addingPercentEncoding(std::string_view text);

} // namespace kestrio
