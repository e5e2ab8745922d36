#include "Programs/CommandLine/Terminal.h"

#include "Kestrio/Platform/Linux/Locations.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <sys/ioctl.h>
#include <unistd.h>

namespace kestrio {
namespace {

std::size_t outputWidth() {
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return size.ws_col;
    const auto said = processEnvironment("COLUMNS").value_or("");
    std::size_t columns = 0;
    std::from_chars(said.data(), said.data() + said.size(), columns);
    return columns > 0 && columns < 1000 ? columns : 100;
}

} // namespace

TableStyle outputStyle() {
    const bool plain = processEnvironment("NO_COLOR").has_value() || processEnvironment("TERM") == "dumb";
    return {outputWidth(), isatty(STDOUT_FILENO) == 1 && !plain};
}

bool tryToPrint(const std::string& text) {
    return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
}

void print(const std::string& text) {
    if (!tryToPrint(text))
        std::_Exit(1);
}

void printJSON(const nlohmann::ordered_json& json) {
    print(json.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n");
}

void complain(const std::string& text) {
    std::fprintf(stderr, "kestrioctl: %s\n", text.c_str());
}

} // namespace kestrio
