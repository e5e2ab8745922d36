// A file descriptor that is closed when its owner goes. A value; belongs to whoever holds it.
#pragma once

#include <unistd.h>
#include <utility>

namespace kestrio {

class Descriptor {
public:
    /// Holds nothing.
    Descriptor() = default;

    /// Takes what `open` and the like answered; a negative number stands for nothing.
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        if (this != &other) {
            close();
            number_ = std::exchange(other.number_, -1);
        }
        return *this;
    }
    ~Descriptor() { close(); }

    explicit operator bool() const { return number_ >= 0; }
    int number() const { return number_; }

    void close() {
        if (number_ >= 0)
            ::close(std::exchange(number_, -1));
    }

private:
    int number_ = -1;
};

} // namespace kestrio
