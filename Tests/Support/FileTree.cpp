#include "Tests/Support/FileTree.h"

#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>

namespace kestrio {

void unpackTree(const std::filesystem::path& text, const std::filesystem::path& folder) {
    std::ifstream lines(text, std::ios::binary);
    if (!lines)
        throw std::runtime_error("no tree in " + text.string());
    std::optional<std::ofstream> file;
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("== ")) {
            if (file)
                *file << line << '\n';
            continue;
        }
        constexpr std::string_view arrow = " -> ";
        const auto link = line.find(arrow);
        const auto path = folder / line.substr(3, link == std::string::npos ? link : link - 3);
        std::filesystem::create_directories(path.parent_path());
        file.reset();
        if (link == std::string::npos)
            file.emplace(path, std::ios::binary);
        else
            std::filesystem::create_symlink(line.substr(link + arrow.size()), path);
    }
}

} // namespace kestrio
