// Everything that depends on what characters are, rather than bytes. Text is UTF-8; bytes that are not are taken as
// U+FFFD. All functions are pure and callable from any thread; text of plain ASCII takes a short way past ICU.
#pragma once

#include <concepts>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace kestrio::text {

/// Canonical equivalence: whether two texts are the same to a reader, however their accents are encoded.
bool equivalent(std::string_view a, std::string_view b);

/// An absent text is equivalent to an absent one alone. (A template, so that plain texts do not turn into optionals.)
template <std::same_as<std::optional<std::string>> Optional>
bool equivalent(const Optional& a, const Optional& b) {
    return a.has_value() == b.has_value() && (!a || equivalent(std::string_view(*a), std::string_view(*b)));
}

/// Equal for all texts that are `equivalent`.
std::size_t hash(std::string_view text);

/// How many user-perceived characters (grapheme clusters) the text has.
std::size_t characterCount(std::string_view text);

/// The first `count` user-perceived characters.
std::string prefix(std::string_view text, std::size_t count);

/// The text made for comparing: decomposed, without case. With `diacritics` ignored, without accents too.
enum class Ignoring { caseOnly, caseAndDiacritics };
std::string folded(std::string_view text, Ignoring ignoring);

/// Whether `needle` occurs in `text`. An empty needle occurs nowhere.
bool contains(std::string_view text, std::string_view needle, Ignoring ignoring);

/// A copy without zero-width spaces, direction marks, embeddings, overrides, isolates and byte order marks. The
/// joiners U+200C and U+200D stay: some scripts and many emoji need them.
std::string withoutInvisibleMarks(std::string_view text);

/// The bytes as UTF-8, with U+FFFD in place of each ill-formed piece and of U+0000. For texts from other programs.
std::string fromUntrustedBytes(std::string_view bytes);

/// How many of the bytes, from the first on, are UTF-8. Stops before a character that is cut off at the end.
std::size_t wellFormedLength(std::string_view bytes);

/// The part of the text between white space at both ends, by the Unicode property. Points into the argument.
std::string_view trimmed(std::string_view text);

/// The part of the text between blanks at both ends: spaces of any width, and tabs. Points into the argument.
std::string_view trimmedOfBlanks(std::string_view text);

/// The text in lower case, by the rules that hold in no language in particular.
std::string lowercased(std::string_view text);

/// One Unicode scalar and the bytes that it takes. An ill-formed piece counts as U+FFFD.
struct Scalar {
    char32_t value;
    std::size_t length;

    friend bool operator==(const Scalar&, const Scalar&) = default;
};

/// The scalar that the text begins with; absent for an empty text.
std::optional<Scalar> firstScalar(std::string_view text);

/// The Unicode property.
bool isWhiteSpace(char32_t scalar);

/// A decimal digit of any script.
bool isDecimalDigit(char32_t scalar);

/// How many columns a terminal needs for the text: none for marks, two for the wide characters of East Asia and emoji.
std::size_t columns(std::string_view text);

/// The text in at most so many columns, with "…" at the end where something was cut, and with nothing in it that a
/// terminal would obey: control characters become blanks, direction marks go.
std::string fittedToColumns(std::string_view text, std::size_t most);

} // namespace kestrio::text
