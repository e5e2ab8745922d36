#include "Kestrio/Platform/Linux/Account.h"

#include <gtest/gtest.h>
#include <map>

namespace kestrio {
namespace {

Account accountWith(const std::map<std::string, std::string>& variables) {
    return currentAccount([&](const std::string& name) -> std::optional<std::string> {
        const auto found = variables.find(name);
        return found == variables.end() ? std::nullopt : std::optional(found->second);
    });
}

TEST(Account, isWhatTheEnvironmentSays) {
    const auto account = accountWith({{"LOGNAME", "alice"}, {"HOME", "/home/alice"}});
    EXPECT_EQ(account.name, "alice");
    EXPECT_EQ(account.home, "/home/alice");
    EXPECT_FALSE(account.host.empty());
}

TEST(Account, hasTheNameOfTheProcessesUserWhereNothingSaysIt) {
    EXPECT_EQ(accountWith({}).name, accountWith({{"LOGNAME", ""}}).name);
    EXPECT_EQ(accountWith({}).home, "");
}

} // namespace
} // namespace kestrio
