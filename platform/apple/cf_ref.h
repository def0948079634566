// Owns one object of Core Foundation, or of what is built on it.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <utility>

namespace platform {

// Takes over what a function with "Create" or "Copy" in its name returned, and releases it. May be
// empty: such functions return null when they fail.
template <typename reference> class cf_ref
{
public:
    cf_ref() = default;
    explicit cf_ref(reference object)
        : object_(object)
    {
    }
    ~cf_ref()
    {
        if (object_ != nullptr)
            CFRelease(object_);
    }
    cf_ref(const cf_ref &) = delete;
    cf_ref &operator=(const cf_ref &) = delete;
    cf_ref(cf_ref &&other) noexcept
        : object_(std::exchange(other.object_, nullptr))
    {
    }
    cf_ref &operator=(cf_ref &&other) noexcept
    {
        std::swap(object_, other.object_);
        return *this;
    }

    [[nodiscard]] reference get() const { return object_; }
    [[nodiscard]] explicit operator bool() const { return object_ != nullptr; }

private:
    reference object_ = nullptr;
};

} // namespace platform
