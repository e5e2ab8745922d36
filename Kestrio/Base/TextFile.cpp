#include "Kestrio/Base/TextFile.h"

#include "Kestrio/Base/Text.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>

namespace kestrio {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t pieceSize = 1 << 20;
constexpr std::size_t longestScalar = 4;
constexpr int stopCheckMilliseconds = 100;

std::error_code lastError() {
    return {errno, std::generic_category()};
}

std::error_code canceled() {
    return std::make_error_code(std::errc::operation_canceled);
}

/// Waits until there is something to read. Other than a file on a disk, a pipe may keep its reader waiting for ever.
std::error_code awaitReadable(int descriptor, const std::stop_token& stop) {
    pollfd waiting{descriptor, POLLIN, 0};
    while (!stop.stop_requested()) {
        const int ready = poll(&waiting, 1, stopCheckMilliseconds);
        if (ready > 0)
            return {};
        if (ready < 0 && errno != EINTR)
            return lastError();
    }
    return canceled();
}

} // namespace

std::error_code readText(const Descriptor& file, const std::function<void(std::string_view piece)>& receive,
                         const std::stop_token& stop) {
    if (!file)
        return std::make_error_code(std::errc::bad_file_descriptor);
    std::string buffer(pieceSize, '\0');
    std::size_t kept = 0; // the beginning of a character that the last piece cut in two
    for (;;) {
        if (const auto error = awaitReadable(file.number(), stop))
            return error;
        const auto count = read(file.number(), buffer.data() + kept, buffer.size() - kept);
        if (count < 0 && (errno == EINTR || errno == EAGAIN))
            continue;
        if (count < 0)
            return lastError();
        const std::string_view piece(buffer.data(), kept + static_cast<std::size_t>(count));
        const auto whole = text::wellFormedLength(piece);
        kept = piece.size() - whole;
        if (kept >= longestScalar || (count == 0 && kept > 0))
            return std::make_error_code(std::errc::illegal_byte_sequence);
        if (count == 0)
            return {};
        receive(piece.substr(0, whole));
        buffer.replace(0, kept, buffer, whole, kept);
    }
}

std::uintmax_t fileSize(const Descriptor& file) {
    struct stat status {};
    return fstat(file.number(), &status) == 0 ? static_cast<std::uintmax_t>(status.st_size) : 0;
}

std::error_code writeAll(const Descriptor& file, std::string_view text) {
    while (!text.empty()) {
        const auto written = ::write(file.number(), text.data(), text.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return lastError();
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return {};
}

/// Hidden, so that no file manager or start-up reader takes it for a file of its own.
std::string ReplacementFile::temporaryPrefix(const fs::path& file) {
    return "." + file.filename().string() + ".new-";
}

ReplacementFile::ReplacementFile(fs::path file, mode_t mode)
    : file_(std::move(file)), temporary_((file_.parent_path() / (temporaryPrefix(file_) + "XXXXXX")).string()) {
    descriptor_ = Descriptor(mkostemp(temporary_.data(), O_CLOEXEC));
    if (!descriptor_) {
        error_ = lastError();
        temporary_.clear();
    } else if (fchmod(descriptor_.number(), mode) != 0) {
        error_ = lastError();
    }
}

ReplacementFile::~ReplacementFile() {
    if (!temporary_.empty())
        unlink(temporary_.c_str());
}

void ReplacementFile::write(std::string_view text) {
    buffer_ += text;
    if (buffer_.size() >= pieceSize)
        flush();
}

void ReplacementFile::flush() {
    if (!error_)
        error_ = writeAll(descriptor_, buffer_);
    buffer_.clear();
}

std::error_code ReplacementFile::commit() {
    flush();
    if (!error_ && (fsync(descriptor_.number()) != 0 || rename(temporary_.c_str(), file_.c_str()) != 0))
        error_ = lastError();
    if (error_)
        return error_;
    temporary_.clear();
    // Without this the new name may be lost with the power. The file itself is in place, so a failure changes nothing.
    const Descriptor folder(open(file_.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder)
        fsync(folder.number());
    return {};
}

} // namespace kestrio
