#include "Fuzz/Fuzz.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

/// Runs the target on each file of the folders named, and on each beginning of it.
int main(int argc, char** argv) {
    std::size_t count = 0;
    for (int i = 1; i < argc; ++i)
        for (const auto& seed : std::filesystem::directory_iterator(argv[i])) {
            std::ifstream stream(seed.path(), std::ios::binary);
            const std::string text(std::istreambuf_iterator<char>(stream), {});
            for (std::size_t length = 0; length <= text.size(); ++length)
                kestrio::fuzz(std::string_view(text).substr(0, length));
            ++count;
        }
    std::printf("%zu seeds and all their beginnings\n", count);
    return count > 0 ? 0 : 1;
}
