// Takes CSV text apart into records of fields, from pieces of any size and in one pass. Holds one field at most, so
// that a file of any size and shape needs little memory. A value of one thread's; pure.
//
// A field in double quotes holds commas and line ends, and a double quote written twice; a quote opens a quoted field
// only where the field is still empty. A line feed, a carriage return, or both together end a record.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace kestrio {

class CSVScanner {
public:
    /// Hears of each field and of each record's end. May throw: the scanner is then of no further use.
    class Receiver {
    public:
        virtual ~Receiver() = default;
        /// `position` counts from 0 in each record. The text is valid during the call; absent when it is longer than
        /// `longestField`.
        virtual void takeField(std::size_t position, std::optional<std::string_view> text) = 0;
        virtual void endRecord() = 0;
    };

    /// In bytes; no title and no address comes near it.
    static constexpr std::size_t longestField = 16 << 20;

    /// The receiver must outlive the scanner.
    explicit CSVScanner(Receiver& receiver) : receiver_(receiver) {}

    /// Pieces end between characters. A byte order mark that begins the text is passed over.
    void scan(std::string_view piece);

    /// After the last piece: closes the field and the record in progress.
    void finish();

private:
    enum class State {
        beginning, // nothing of the field was seen
        plain,
        quoted,
        quoteSeen, // a quote within quotes: their end, or the first of two
    };

    const char* scanBeginning(const char* at, const char* end);
    const char* scanPlain(const char* at, const char* end);
    const char* scanQuoted(const char* at, const char* end);
    const char* scanAfterQuote(const char* at);
    void keep(const char* from, const char* to);
    void endField(std::string_view rest);
    void endRecord();

    Receiver& receiver_;
    State state_ = State::beginning;
    std::string field_; // of the field in progress, what had to be kept
    bool isTooLong_ = false;
    std::size_t position_ = 0;
    bool isInFirstRecord_ = true;
    bool isAfterReturn_ = false;
};

} // namespace kestrio
