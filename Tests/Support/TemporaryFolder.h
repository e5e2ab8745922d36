// A fresh folder for one test, removed with everything in it afterwards.
#pragma once

#include "Kestrio/Base/Mistake.h"

#include <cstdlib>
#include <filesystem>
#include <string>

namespace kestrio {

class TemporaryFolder {
public:
    TemporaryFolder() {
        auto name = (std::filesystem::temp_directory_path() / "kestrio-test-XXXXXX").string();
        if (!mkdtemp(name.data()))
            programmersMistake("no temporary folder can be made");
        path_ = name;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

private:
    std::filesystem::path path_;
};

} // namespace kestrio
