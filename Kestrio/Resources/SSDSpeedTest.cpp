#include "Kestrio/Resources/SSDSpeedTest.h"

#include "Kestrio/Base/StoredDates.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <nlohmann/json.hpp>
#include <random>

namespace kestrio {
namespace {

constexpr std::size_t blockSize = 4'194'304; // 4 MiB: long enough that the drive, not the calls, sets the pace
constexpr std::size_t megabytesPerBlock = 4;

/// Memory that a drive can be read into and written from past the cache.
class Block {
public:
    Block() : bytes_(static_cast<std::byte*>(::operator new(blockSize, alignment, std::nothrow))) {}
    ~Block() { ::operator delete(bytes_, alignment); }
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;

    explicit operator bool() const { return bytes_ != nullptr; }
    std::span<std::byte> span() { return {bytes_, blockSize}; }

    /// So that nothing on the way that compresses, or finds equal pieces, can flatter the figures.
    void fillAtRandom() {
        std::mt19937_64 numbers(std::random_device{}());
        for (std::size_t at = 0; at < blockSize; at += sizeof(std::uint64_t)) {
            const std::uint64_t number = numbers();
            std::memcpy(bytes_ + at, &number, sizeof number);
        }
    }

private:
    static constexpr std::align_val_t alignment{SpeedTestFile::alignment};
    std::byte* bytes_;
};

bool writeBlocks(SpeedTestFile& file, Block& block, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        if (!file.write(block.span()))
            return false;
    return file.flush();
}

bool readBlocks(SpeedTestFile& file, Block& block, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        if (!file.read(block.span()))
            return false;
    return true;
}

/// The number under the key; absent when there is none that is finite.
std::optional<double> number(const nlohmann::json& json, const char* key) {
    const auto found = json.find(key);
    if (found == json.end() || !found->is_number())
        return std::nullopt;
    const auto value = found->get<double>();
    return std::isfinite(value) ? std::optional(value) : std::nullopt;
}

} // namespace

std::optional<SSDSpeedTest::Result> SSDSpeedTest::run(Disks& disks, const Clock& clock, std::size_t megabytes) {
    const auto file = disks.makeSpeedTestFile();
    Block block;
    if (!file || !block)
        return std::nullopt;
    block.fillAtRandom();
    const auto count = std::max<std::size_t>(megabytes / megabytesPerBlock, 1);

    const auto writeStart = clock.uptime();
    if (!writeBlocks(*file, block, count))
        return std::nullopt;
    const double writeSeconds = (clock.uptime() - writeStart).count();
    if (!file->rewind())
        return std::nullopt;
    const auto readStart = clock.uptime();
    if (!readBlocks(*file, block, count))
        return std::nullopt;
    const double readSeconds = (clock.uptime() - readStart).count();

    if (!(writeSeconds > 0) || !(readSeconds > 0))
        return std::nullopt;
    const auto bytes = static_cast<double>(count * blockSize);
    return Result{bytes / readSeconds, bytes / writeSeconds, clock.now()};
}

std::string SSDSpeedTest::encoded(const Result& result) {
    return nlohmann::ordered_json{{"readBytesPerSecond", result.readBytesPerSecond},
                                  {"writeBytesPerSecond", result.writeBytesPerSecond},
                                  {"date", (result.date - originOfStoredDates).count()}}
        .dump();
}

std::optional<SSDSpeedTest::Result> SSDSpeedTest::decoded(std::string_view text) {
    const auto json = nlohmann::json::parse(text, nullptr, false);
    if (!json.is_object())
        return std::nullopt;
    const auto read = number(json, "readBytesPerSecond");
    const auto write = number(json, "writeBytesPerSecond");
    const auto date = number(json, "date");
    if (!read || !write || !date)
        return std::nullopt;
    return Result{*read, *write, originOfStoredDates + Seconds(*date)};
}

std::optional<SSDSpeedTest::Result> SSDSpeedTest::saved(const KeyValueStore& store) {
    const auto stored = store.get<SettingBytes>(settingKey);
    return stored ? decoded(stored->bytes) : std::nullopt;
}

void SSDSpeedTest::save(KeyValueStore& store, const std::optional<Result>& result) {
    store.set(settingKey, result ? std::optional<SettingValue>(SettingBytes{encoded(*result)}) : std::nullopt);
}

} // namespace kestrio
