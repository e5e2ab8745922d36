#include "TindraCore/UUID.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace tindra {
namespace {

TEST(UUID, isWrittenInItsCanonicalUpperCaseForm) {
    EXPECT_EQ(text(UUID{}), "00000000-0000-0000-0000-000000000000");
    EXPECT_EQ(
        text(UUID{{0xE6, 0x21, 0xE1, 0xF8, 0xC3, 0x6C, 0x49, 0x5A, 0x93, 0xFC, 0x0C, 0x24, 0x7A, 0x3E, 0x6E, 0x5F}}),
        "E621E1F8-C36C-495A-93FC-0C247A3E6E5F");
}

TEST(UUID, isReadInEitherCase) {
    const auto upper = uuid("E621E1F8-C36C-495A-93FC-0C247A3E6E5F");
    ASSERT_TRUE(upper);
    EXPECT_EQ(upper, uuid("e621e1f8-c36c-495a-93fc-0c247a3e6e5f"));
    EXPECT_EQ(text(*upper), "E621E1F8-C36C-495A-93FC-0C247A3E6E5F");
}

TEST(UUID, isNotReadFromAnythingElse) {
    const std::string good = "E621E1F8-C36C-495A-93FC-0C247A3E6E5F";
    for (std::size_t length = 0; length < good.size(); ++length)
        EXPECT_EQ(uuid(good.substr(0, length)), std::nullopt) << length;
    EXPECT_EQ(uuid(good + "0"), std::nullopt);
    EXPECT_EQ(uuid("{" + good.substr(1, 34) + "}"), std::nullopt);
    // Every position, with the neighbours of the digits and letters, a dash, and a byte that is not ASCII.
    for (std::size_t position = 0; position < good.size(); ++position)
        for (const char wrong : {'/', ':', '@', 'G', '`', 'g', ' ', '\0', '\xC3'}) {
            auto bad = good;
            bad[position] = wrong;
            EXPECT_EQ(uuid(bad), std::nullopt) << bad;
        }
    for (std::size_t position = 0; position < good.size(); ++position) {
        auto bad = good;
        bad[position] = bad[position] == '-' ? '0' : '-';
        EXPECT_EQ(uuid(bad), std::nullopt) << bad;
    }
}

RC_GTEST_PROP(UUIDProperties, comesBackFromItsText, ()) {
    UUID one;
    for (auto& byte : one.bytes)
        byte = *rc::gen::arbitrary<std::uint8_t>();
    RC_ASSERT(uuid(text(one)) == std::optional(one));
}

} // namespace
} // namespace tindra
