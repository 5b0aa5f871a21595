#pragma once

#include <unistd.h>
#include <utility>

namespace marvolen {

// Owns an open descriptor of the operating system, or none.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int openDescriptor) : number(openDescriptor) {}
    ~Descriptor() { Close(); }
    Descriptor(Descriptor&& other) noexcept : number(std::exchange(other.number, kNone)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        if (this != &other) {
            Close();
            number = std::exchange(other.number, kNone);
        }
        return *this;
    }

    // What the system's calls take; negative when there is none.
    int Get() const { return number; }
    bool IsOpen() const { return number >= 0; }

    void Close() {
        if (IsOpen()) close(std::exchange(number, kNone));
    }

private:
    static constexpr int kNone = -1;
    int number = kNone;
};

}  // namespace marvolen
