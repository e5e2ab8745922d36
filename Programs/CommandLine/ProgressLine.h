// How far a long command is, for somebody who watches it in a terminal.
#pragma once

#include <cstdio>
#include <fmt/format.h>
#include <string>
#include <unistd.h>
#include <utility>

namespace kestrio {

/// A share that is done, on one line of the terminal that is overwritten; nothing where there is no terminal.
class ProgressLine {
public:
    explicit ProgressLine(std::string what) : what_(std::move(what)) {}
    ~ProgressLine() {
        if (isShown_)
            std::fputs("\r\033[K", stderr);
    }
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    void show(double share) {
        if (isatty(STDERR_FILENO) != 1)
            return;
        isShown_ = true;
        const auto line = fmt::format("\r{} {}%", what_, static_cast<int>(share * 100));
        std::fputs(line.c_str(), stderr);
    }

private:
    const std::string what_;
    bool isShown_ = false;
};

} // namespace kestrio
