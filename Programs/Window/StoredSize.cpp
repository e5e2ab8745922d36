#include "Programs/Window/StoredSize.h"

#include "Kestrio/Base/Files.h"

#include <fstream>

namespace kestrio {
namespace {

constexpr int least = 200;
constexpr int most = 20'000;

bool isPossible(int length) {
    return length >= least && length <= most;
}

} // namespace

std::optional<WindowSize> readStoredSize(const std::filesystem::path& file) {
    std::ifstream text(file);
    WindowSize size;
    const bool isRead = static_cast<bool>(text >> size.width >> size.height);
    return isRead && isPossible(size.width) && isPossible(size.height) ? std::optional(size) : std::nullopt;
}

void writeStoredSize(const std::filesystem::path& file, WindowSize size) {
    if (makeFolder(file.parent_path()))
        return;
    std::ofstream(file) << size.width << ' ' << size.height << '\n';
}

} // namespace kestrio
