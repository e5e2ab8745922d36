// A folder of a test's own, removed with everything in it.
#pragma once

#include <filesystem>
#include <string>

namespace kestrio {

class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }

    /// Writes a file below the folder, making the folders on the way.
    std::filesystem::path write(const std::filesystem::path& relative, const std::string& text) const;

private:
    std::filesystem::path path_;
};

/// The file's content; empty when there is none.
std::string fileText(const std::filesystem::path& file);

void writeFile(const std::filesystem::path& file, const std::string& text);

} // namespace kestrio
