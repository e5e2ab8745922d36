#include "Kestrio/Reports/CSVScanner.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace kestrio {
namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

/// Whether a byte ends a field that isn't quoted. All three are ASCII, so that no byte of a longer character is one.
constexpr auto endsField = [] {
    std::array<bool, 256> table{};
    table[','] = table['\n'] = table['\r'] = true;
    return table;
}();

std::string_view view(const char* from, const char* to) {
    return {from, static_cast<std::size_t>(to - from)};
}

} // namespace

void CSVScanner::scan(std::string_view piece) {
    const char* at = piece.data();
    const char* const end = at + piece.size();
    while (at != end)
        switch (state_) {
        case State::beginning: at = scanBeginning(at, end); break;
        case State::plain: at = scanPlain(at, end); break;
        case State::quoted: at = scanQuoted(at, end); break;
        case State::quoteSeen: at = scanAfterQuote(at); break;
        }
}

const char* CSVScanner::scanBeginning(const char* at, const char* end) {
    if (isAfterReturn_) {
        isAfterReturn_ = false;
        if (*at == '\n')
            return at + 1;
    }
    if (isInFirstRecord_ && position_ == 0 && view(at, end).starts_with(byteOrderMark))
        return at + byteOrderMark.size();
    state_ = *at == '"' ? State::quoted : State::plain;
    return state_ == State::quoted ? at + 1 : at;
}

const char* CSVScanner::scanPlain(const char* at, const char* end) {
    const char* stop = std::find_if(at, end, [](char c) { return endsField[static_cast<unsigned char>(c)]; });
    if (stop == end) {
        keep(at, end);
        return end;
    }
    endField(view(at, stop));
    if (*stop != ',') {
        isAfterReturn_ = *stop == '\r';
        endRecord();
    }
    return stop + 1;
}

const char* CSVScanner::scanQuoted(const char* at, const char* end) {
    const auto* quote = static_cast<const char*>(std::memchr(at, '"', static_cast<std::size_t>(end - at)));
    keep(at, quote ? quote : end);
    if (!quote)
        return end;
    state_ = State::quoteSeen;
    return quote + 1;
}

const char* CSVScanner::scanAfterQuote(const char* at) {
    if (*at != '"') {
        state_ = State::plain;
        return at;
    }
    keep(at, at + 1);
    state_ = State::quoted;
    return at + 1;
}

void CSVScanner::keep(const char* from, const char* to) {
    isTooLong_ = isTooLong_ || field_.size() + view(from, to).size() > longestField;
    if (!isTooLong_)
        field_ += view(from, to);
}

void CSVScanner::endField(std::string_view rest) {
    if (isTooLong_ || field_.size() + rest.size() > longestField)
        receiver_.takeField(position_, std::nullopt);
    else if (field_.empty())
        receiver_.takeField(position_, rest); // as most are: not copied
    else
        receiver_.takeField(position_, field_ += rest);
    field_.clear();
    isTooLong_ = false;
    ++position_;
    state_ = State::beginning;
}

void CSVScanner::endRecord() {
    position_ = 0;
    isInFirstRecord_ = false;
    receiver_.endRecord();
}

void CSVScanner::finish() {
    if (position_ == 0 && field_.empty() && !isTooLong_)
        return;
    endField({});
    endRecord();
}

} // namespace kestrio
