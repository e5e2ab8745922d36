#include "Kestrio/Platform/Linux/Account.h"

#include <array>
#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace kestrio {
namespace {

std::string nameOfUser(uid_t user) {
    std::vector<char> space(16 * 1024);
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(user, &entry, space.data(), space.size(), &found) != 0 || found == nullptr)
        return {};
    return found->pw_name;
}

std::string hostName() {
    std::array<char, 256> name{};
    return gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "";
}

} // namespace

Account currentAccount(const Environment& environment) {
    auto name = environment("LOGNAME").value_or("");
    if (name.empty())
        name = nameOfUser(getuid());
    return {std::move(name), environment("HOME").value_or(""), hostName()};
}

} // namespace kestrio
