#include "Kestrio/Base/Text.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>
#include <unicode/brkiter.h>
#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/edits.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/utext.h>
#include <unicode/utf8.h>
#include <utility>

namespace kestrio::text {
namespace {

bool isASCII(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

/// How many of the bytes, from the first on, are ASCII; eight at a time.
std::size_t asciiLength(std::string_view bytes) {
    constexpr std::uint64_t highBits = 0x8080'8080'8080'8080;
    std::size_t at = 0;
    for (std::uint64_t eight = 0; at + sizeof eight <= bytes.size(); at += sizeof eight) {
        std::memcpy(&eight, bytes.data() + at, sizeof eight);
        if ((eight & highBits) != 0)
            break;
    }
    while (at < bytes.size() && static_cast<unsigned char>(bytes[at]) < 0x80)
        ++at;
    return at;
}

icu::StringPiece piece(std::string_view text) {
    return {text.data(), static_cast<std::int32_t>(text.size())};
}

/// The normal form under `normalizer`, or the text as it stands when ICU has no data.
std::string normalized(const icu::Normalizer2* normalizer, std::string_view text) {
    std::string result;
    icu::StringByteSink<std::string> sink(&result);
    UErrorCode error = U_ZERO_ERROR;
    normalizer->normalizeUTF8(0, piece(text), sink, nullptr, error);
    return U_SUCCESS(error) ? result : std::string(text);
}

std::string composed(std::string_view text) {
    UErrorCode error = U_ZERO_ERROR;
    const auto* normalizer = icu::Normalizer2::getNFCInstance(error);
    return U_SUCCESS(error) ? normalized(normalizer, text) : std::string(text);
}

std::string decomposed(std::string_view text) {
    UErrorCode error = U_ZERO_ERROR;
    const auto* normalizer = icu::Normalizer2::getNFDInstance(error);
    return U_SUCCESS(error) ? normalized(normalizer, text) : std::string(text);
}

/// Calls `visit(codePoint, bytes)` for each code point; `codePoint` is negative for an ill-formed piece.
template <class Visit>
void forEachCodePoint(std::string_view text, Visit visit) {
    const auto* data = reinterpret_cast<const std::uint8_t*>(text.data());
    const auto length = static_cast<std::int32_t>(text.size());
    for (std::int32_t at = 0; at < length;) {
        const auto start = at;
        UChar32 codePoint = 0;
        U8_NEXT(data, at, length, codePoint);
        visit(codePoint, text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(at - start)));
    }
}

/// The part of the text between scalars at both ends that `isEdge` names.
template <class IsEdge>
std::string_view trimmedOf(std::string_view text, IsEdge isEdge) {
    std::optional<std::size_t> first;
    std::size_t end = 0;
    std::size_t at = 0;
    forEachCodePoint(text, [&](UChar32 c, std::string_view bytes) {
        if (c < 0 || !isEdge(c)) {
            first = first.value_or(at);
            end = at + bytes.size();
        }
        at += bytes.size();
    });
    return first ? text.substr(*first, end - *first) : std::string_view();
}

std::string lowercasedASCII(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return result;
}

bool isInvisibleMark(UChar32 c) {
    return c == 0x200B || c == 0x200E || c == 0x200F || (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069) ||
           c == 0xFEFF;
}

bool isMark(UChar32 c) {
    return c >= 0 && u_charType(c) == U_NON_SPACING_MARK;
}

/// Whether the text begins in the middle of a decomposed character, with one of its accents.
bool beginsWithMark(std::string_view text) {
    bool mark = false;
    forEachCodePoint(text.substr(0, 4), [&, first = true](UChar32 c, std::string_view) mutable {
        mark |= std::exchange(first, false) && isMark(c);
    });
    return mark;
}

/// Finds the boundaries of user-perceived characters; making one costs far more than using it.
icu::BreakIterator* characterBreaks() {
    thread_local const std::unique_ptr<icu::BreakIterator> iterator = [] {
        UErrorCode error = U_ZERO_ERROR;
        std::unique_ptr<icu::BreakIterator> made(
            icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), error));
        return U_SUCCESS(error) ? std::move(made) : nullptr;
    }();
    return iterator.get();
}

/// Calls `visit(end)` with the byte offset at which each user-perceived character ends, until it answers false.
template <class Visit>
void forEachCharacterEnd(std::string_view text, Visit visit) {
    auto* breaks = characterBreaks();
    if (!breaks)
        return;
    UErrorCode error = U_ZERO_ERROR;
    UText source = UTEXT_INITIALIZER;
    utext_openUTF8(&source, text.data(), static_cast<std::int64_t>(text.size()), &error);
    breaks->setText(&source, error);
    if (U_SUCCESS(error))
        for (auto end = breaks->next(); end != icu::BreakIterator::DONE && visit(static_cast<std::size_t>(end));)
            end = breaks->next();
    utext_close(&source);
}

/// In ASCII every byte is a character, but for a carriage return and its line feed, which are one together.
bool bytesAreCharacters(std::string_view text) {
    return isASCII(text) && text.find('\r') == std::string_view::npos;
}

std::size_t columnsOf(UChar32 c) {
    if (c < 0)
        return 1;
    switch (u_charType(c)) {
    case U_NON_SPACING_MARK:
    case U_ENCLOSING_MARK:
    case U_FORMAT_CHAR:
    case U_CONTROL_CHAR: return 0;
    default: break;
    }
    const auto width = u_getIntPropertyValue(c, UCHAR_EAST_ASIAN_WIDTH);
    return width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
}

} // namespace

bool equivalent(std::string_view a, std::string_view b) {
    if (a == b)
        return true;
    if (isASCII(a) && isASCII(b))
        return false;
    return composed(a) == composed(b);
}

std::size_t hash(std::string_view text) {
    // Composing can turn other characters into ASCII, never ASCII into others: the short way agrees with the long.
    return isASCII(text) ? std::hash<std::string_view>()(text) : std::hash<std::string>()(composed(text));
}

std::size_t characterCount(std::string_view text) {
    if (bytesAreCharacters(text))
        return text.size();
    std::size_t count = 0;
    forEachCharacterEnd(text, [&](std::size_t) {
        ++count;
        return true;
    });
    return count;
}

std::string prefix(std::string_view text, std::size_t count) {
    if (count == 0)
        return {};
    if (text.size() <= count) // no character is shorter than a byte
        return std::string(text);
    if (bytesAreCharacters(text.substr(0, count + 1))) // with one more, which might have been an accent
        return std::string(text.substr(0, count));
    std::size_t length = 0;
    std::size_t seen = 0;
    forEachCharacterEnd(text, [&](std::size_t end) {
        length = end;
        return ++seen < count;
    });
    return std::string(text.substr(0, length));
}

std::string folded(std::string_view text, Ignoring ignoring) {
    if (isASCII(text))
        return lowercasedASCII(text);
    std::string caseless;
    icu::StringByteSink<std::string> sink(&caseless);
    UErrorCode error = U_ZERO_ERROR;
    icu::CaseMap::utf8Fold(0, piece(decomposed(text)), sink, nullptr, error);
    auto result = decomposed(U_SUCCESS(error) ? std::string_view(caseless) : text);
    if (ignoring == Ignoring::caseOnly)
        return result;
    std::string bare;
    forEachCodePoint(result, [&](UChar32 c, std::string_view bytes) {
        if (!isMark(c))
            bare += bytes;
    });
    return bare;
}

bool contains(std::string_view text, std::string_view needle, Ignoring ignoring) {
    if (needle.empty())
        return false;
    const auto within = folded(text, ignoring);
    const auto wanted = folded(needle, ignoring);
    for (auto at = within.find(wanted); at != std::string::npos; at = within.find(wanted, at + 1))
        if (!beginsWithMark(std::string_view(within).substr(at + wanted.size())))
            return true;
    return false;
}

std::string withoutInvisibleMarks(std::string_view text) {
    if (isASCII(text))
        return std::string(text);
    std::string result;
    result.reserve(text.size());
    forEachCodePoint(text, [&](UChar32 c, std::string_view bytes) {
        if (!isInvisibleMark(c))
            result += bytes;
    });
    return result;
}

std::string fromUntrustedBytes(std::string_view bytes) {
    std::string result;
    result.reserve(bytes.size());
    forEachCodePoint(bytes, [&](UChar32 c, std::string_view piece) { result += c <= 0 ? "\uFFFD" : piece; });
    return result;
}

std::size_t wellFormedLength(std::string_view bytes) {
    std::size_t at = asciiLength(bytes);
    while (at < bytes.size()) {
        const auto* character = reinterpret_cast<const std::uint8_t*>(bytes.data() + at);
        const auto most = static_cast<std::int32_t>(std::min<std::size_t>(bytes.size() - at, U8_MAX_LENGTH));
        std::int32_t length = 0;
        UChar32 codePoint = 0;
        U8_NEXT(character, length, most, codePoint);
        if (codePoint < 0)
            return at;
        at += static_cast<std::size_t>(length);
        at += asciiLength(bytes.substr(at));
    }
    return at;
}

std::string_view trimmed(std::string_view text) {
    return trimmedOf(text, [](UChar32 c) { return u_isUWhiteSpace(c) != 0; });
}

std::string_view trimmedOfBlanks(std::string_view text) {
    return trimmedOf(text, [](UChar32 c) { return u_isblank(c) != 0; });
}

std::string lowercased(std::string_view text) {
    if (isASCII(text))
        return lowercasedASCII(text);
    std::string result;
    icu::StringByteSink<std::string> sink(&result);
    UErrorCode error = U_ZERO_ERROR;
    icu::CaseMap::utf8ToLower("", 0, piece(text), sink, nullptr, error);
    return U_SUCCESS(error) ? result : std::string(text);
}

std::optional<Scalar> firstScalar(std::string_view text) {
    if (text.empty())
        return std::nullopt;
    std::int32_t at = 0;
    UChar32 c = 0;
    U8_NEXT(reinterpret_cast<const std::uint8_t*>(text.data()), at, static_cast<std::int32_t>(text.size()), c);
    return Scalar{c < 0 ? U'\uFFFD' : static_cast<char32_t>(c), static_cast<std::size_t>(at)};
}

bool isWhiteSpace(char32_t scalar) {
    return u_isUWhiteSpace(static_cast<UChar32>(scalar));
}

bool isDecimalDigit(char32_t scalar) {
    return u_charType(static_cast<UChar32>(scalar)) == U_DECIMAL_DIGIT_NUMBER;
}

std::size_t columns(std::string_view text) {
    std::size_t total = 0;
    forEachCodePoint(text, [&](UChar32 c, std::string_view) { total += columnsOf(c); });
    return total;
}

std::string fittedToColumns(std::string_view text, std::size_t most) {
    std::string harmless;
    forEachCodePoint(withoutInvisibleMarks(text), [&](UChar32 c, std::string_view bytes) {
        harmless += c < 0 ? "\uFFFD" : u_charType(c) == U_CONTROL_CHAR ? " " : bytes;
    });
    if (columns(harmless) <= most)
        return harmless;
    if (most == 0)
        return {};
    std::string_view kept;
    forEachCharacterEnd(harmless, [&](std::size_t end) {
        const auto longer = std::string_view(harmless).substr(0, end);
        const bool fits = columns(longer) < most; // with one left for the ellipsis
        if (fits)
            kept = longer;
        return fits;
    });
    return std::string(kept) + "…";
}

} // namespace kestrio::text
