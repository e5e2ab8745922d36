#include "Programs/CommandLine/OutputFile.h"

#include "Kestrio/Base/TextFile.h"

#include <cerrno>
#include <fcntl.h>
#include <optional>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

constexpr mode_t ownersAlone = 0600;

/// Opens what is named and is no ordinary file, as a device or a pipe: it is written to and not replaced.
std::optional<Descriptor> unreplaceable(const fs::path& file) {
    std::error_code ignored;
    const auto status = fs::status(file, ignored);
    if (!fs::exists(status) || fs::is_regular_file(status) || fs::is_directory(status))
        return std::nullopt;
    return Descriptor(open(file.c_str(), O_WRONLY | O_CLOEXEC));
}

std::error_code writeThrough(const Descriptor& file, const std::function<void(const FileWriter&)>& content) {
    if (!file)
        return {errno, std::generic_category()};
    std::error_code error;
    content([&](std::string_view text) {
        if (!error)
            error = writeAll(file, text);
    });
    return error;
}

} // namespace

std::error_code writeFile(const fs::path& path, const std::function<void(const FileWriter&)>& content,
                          const std::stop_token& stop) {
    if (const auto file = unreplaceable(path))
        return writeThrough(*file, content);
    std::error_code isNew;
    const auto target = fs::canonical(path, isNew);
    ReplacementFile file(isNew ? fs::absolute(path) : target, ownersAlone);
    content([&](std::string_view text) { file.write(text); });
    return stop.stop_requested() ? std::make_error_code(std::errc::operation_canceled) : file.commit();
}

} // namespace kestrio
