#include "Kestrio/Platform/Linux/X11Text.h"

#include <gtest/gtest.h>

namespace kestrio {
namespace {

using std::string_literals::operator""s;

TEST(X11Text, readsLatin1) {
    EXPECT_EQ(fromLatin1("caf\xe9 \xff"), "café ÿ");
    EXPECT_EQ(fromLatin1("a\0b"s), "a\xEF\xBF\xBD"
                                   "b");
    EXPECT_EQ(fromLatin1(""), "");
}

TEST(X11Text, readsCompoundText) {
    const struct {
        std::string bytes;
        const char* text;
    } rows[] = {
        {"plain", "plain"},
        {"caf\xe9", "café"},
        {"\x1B-L\xda\xd8\xdd\xde", "кино"},
        {"\x1B-F\xe1\xe2 a", "αβ a"},
        {"\x1B-B\xb1\x1B-A\xb1", "ą±"},
        {"a\x1B%G\xE2\x82\xAC\x1B%@\xe9", "a€é"},
        {"a\x1B%G\xE2\x82\xAC", "a€"},
        {"\x1B$(B\x46\x7C\x4B\x5C\x1B(Bx", "日本x"},
        {"\x1B$)C\xc7\xd1", "한"},
        {"\x1B-@\xe9", "\xEF\xBF\xBD"},
        {"\x9B"
         "1]abc",
         "abc"},
        {"\x1B", ""},
        {"x\x1B-", "x"},
        {"\x9B", ""},
        {"", ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(fromCompoundText(row.bytes), row.text);
}

} // namespace
} // namespace kestrio
