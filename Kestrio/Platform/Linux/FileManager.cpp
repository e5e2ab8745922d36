#include "Kestrio/Platform/Linux/FileManager.h"

#include <chrono>
#include <fmt/format.h>
#include <sdbus-c++/sdbus-c++.h>
#include <string_view>
#include <vector>

namespace kestrio {
namespace {

constexpr auto service = "org.freedesktop.FileManager1";
constexpr auto object = "/org/freedesktop/FileManager1";
constexpr std::chrono::seconds deadline{2}; // one that is not running takes a moment to start

bool isUnreserved(char c) {
    constexpr std::string_view marks = "-._~/";
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           marks.find(c) != std::string_view::npos;
}

} // namespace

bool showInFileManager(const std::string& busAddress, const std::filesystem::path& file) {
    try {
        const auto connection = sdbus::createSessionBusConnectionWithAddress(busAddress);
        sdbus::createProxy(*connection, service, object)
            ->callMethod("ShowItems")
            .onInterface(service)
            .withTimeout(deadline)
            .withArguments(std::vector{fileAddress(file)}, std::string());
        return true;
    } catch (const sdbus::Error&) {
        return false;
    }
}

std::string fileAddress(const std::filesystem::path& file) {
    std::string address = "file://";
    for (const char c : file.string())
        address += isUnreserved(c) ? std::string(1, c) : fmt::format("%{:02X}", static_cast<unsigned char>(c));
    return address;
}

} // namespace kestrio
