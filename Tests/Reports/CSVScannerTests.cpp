#include "Kestrio/Reports/CSVScanner.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <vector>

namespace kestrio {
namespace {

using Records = std::vector<std::vector<std::string>>;

constexpr auto tooLong = "(too long)";

class Collector : public CSVScanner::Receiver {
public:
    void takeField(std::size_t position, std::optional<std::string_view> text) override {
        EXPECT_EQ(position, record_.size());
        record_.emplace_back(text.value_or(tooLong));
    }
    void endRecord() override { records.push_back(std::exchange(record_, {})); }

    Records records;

private:
    std::vector<std::string> record_;
};

/// The records of a text that arrives in pieces of so many bytes.
Records records(std::string_view text, std::size_t pieceSize = std::string_view::npos) {
    Collector collector;
    CSVScanner scanner(collector);
    for (std::size_t at = 0; at < text.size(); at += std::min(pieceSize, text.size()))
        scanner.scan(text.substr(at, pieceSize));
    scanner.finish();
    return collector.records;
}

TEST(CSVScanner, takesTextApart) {
    struct Row {
        const char* text;
        Records records;
    };
    const Row table[] = {
        {"", {}},
        {"a", {{"a"}}},
        {"a,b", {{"a", "b"}}},
        {"a,b\n", {{"a", "b"}}},
        {"a,", {{"a", ""}}},
        {",", {{"", ""}}},
        {",,\n", {{"", "", ""}}},
        {"\n", {{""}}},
        {"\n\n", {{""}, {""}}},
        {"a\nb", {{"a"}, {"b"}}},
        {"a\r\nb\r\n", {{"a"}, {"b"}}},
        {"a\rb\r", {{"a"}, {"b"}}},
        {"a\r\rb", {{"a"}, {""}, {"b"}}},
        {"a\n\rb", {{"a"}, {""}, {"b"}}},
        {"a\r\n\nb", {{"a"}, {""}, {"b"}}},
        {"\"a,b\"", {{"a,b"}}},
        {"\"a\nb\r\nc\rd\",e", {{"a\nb\r\nc\rd", "e"}}},
        {"\"a\"\"b\"", {{"a\"b"}}},
        {"\"\"\"\"", {{"\""}}},
        {"\"\"\"\"\"\"", {{"\"\""}}},
        {"\"\",a", {{"", "a"}}},
        {"a,\"\"\n", {{"a", ""}}},
        {"\"a\"b", {{"ab"}}},
        {"\"a\"b\"c\"", {{"ab\"c\""}}},
        {"a\"b", {{"a\"b"}}},
        {"a\"b,c\"d", {{"a\"b", "c\"d"}}},
        {" \"a\"", {{" \"a\""}}},
        {"\"never closed,\nto the end", {{"never closed,\nto the end"}}},
        {"a\n\"never closed", {{"a"}, {"never closed"}}},
        {"a,\"", {{"a", ""}}},
        {"\"\"", {}},
        {"\"", {}},
        {"\xEF\xBB\xBF"
         "a",
         {{"a"}}},
        {"\xEF\xBB\xBF\"a,b\"", {{"a,b"}}},
        {"\xEF\xBB\xBF", {}},
        {"a\xEF\xBB\xBF", {{"a\xEF\xBB\xBF"}}},
        {"a,\xEF\xBB\xBF"
         "b",
         {{"a", "\xEF\xBB\xBF"
                "b"}}},
        {"a\n\xEF\xBB\xBF"
         "b",
         {{"a"},
          {"\xEF\xBB\xBF"
           "b"}}},
        {"\"\xEF\xBB\xBF"
         "a\"",
         {{"\xEF\xBB\xBF"
           "a"}}},
        {"é,“ü”😀\n", {{"é", "“ü”😀"}}},
        {"a\v\f\xC2\x85\xE2\x80\xA8"
         "b",
         {{"a\v\f\xC2\x85\xE2\x80\xA8"
           "b"}}}, // other line ends are none
    };
    for (const auto& row : table)
        EXPECT_EQ(records(row.text), row.records) << testing::PrintToString(row.text);
}

TEST(CSVScanner, findsTheSameHoweverTheTextIsCut) {
    const std::string text = "a,\"b\"\"c\",d\r\n\"e\nf\"\"\"\r\rg\"h,\"\"\n,\r\n\"last";
    for (std::size_t size = 1; size < text.size(); ++size)
        EXPECT_EQ(records(text, size), records(text)) << size;
    rc::check([] {
        const auto made = *rc::gen::container<std::string>(rc::gen::element(',', '"', '\n', '\r', 'a', 'b'));
        const auto size = *rc::gen::inRange<std::size_t>(1, 5);
        RC_ASSERT(records(made, size) == records(made));
    });
}

TEST(CSVScanner, passesOverAFieldOfAbsurdLength) {
    const std::string most(CSVScanner::longestField, 'x');
    for (const std::size_t pieceSize : {std::string::npos, std::size_t{1} << 20}) {
        EXPECT_EQ(records("a," + most + ",b\nc", pieceSize), (Records{{"a", most, "b"}, {"c"}}));
        EXPECT_EQ(records("a,x" + most + ",b\nc", pieceSize), (Records{{"a", tooLong, "b"}, {"c"}}));
        EXPECT_EQ(records("a,\"x" + most + "\",b\nc", pieceSize), (Records{{"a", tooLong, "b"}, {"c"}}));
        EXPECT_EQ(records("\"" + most + most, pieceSize), (Records{{tooLong}}));
    }
}

} // namespace
} // namespace kestrio
