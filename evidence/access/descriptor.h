// Owns one descriptor of the system.
#pragma once

#include <unistd.h>

#include <utility>

namespace evidence {

// Movable, not copyable; closes itself. -1 stands for none.
class descriptor
{
public:
    descriptor() = default;
    explicit descriptor(int number)
        : number_(number)
    {
    }
    ~descriptor() { close(); }
    descriptor(const descriptor &) = delete;
    descriptor &operator=(const descriptor &) = delete;
    descriptor(descriptor &&other) noexcept
        : number_(other.release())
    {
    }
    descriptor &operator=(descriptor &&other) noexcept
    {
        if (this != &other) {
            close();
            number_ = other.release();
        }
        return *this;
    }

    [[nodiscard]] int get() const { return number_; }
    [[nodiscard]] bool is_open() const { return number_ >= 0; }
    // The caller closes it.
    [[nodiscard]] int release() { return std::exchange(number_, -1); }
    void close()
    {
        if (is_open())
            ::close(release());
    }

private:
    int number_ = -1;
};

} // namespace evidence
