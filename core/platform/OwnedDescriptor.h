#pragma once

#include <unistd.h>

#include <utility>

namespace vostrel {

/// An open descriptor that closes itself. Holds -1 when it holds nothing.
class OwnedDescriptor {
public:
    OwnedDescriptor() = default;
    explicit OwnedDescriptor(int descriptor) : held(descriptor) {}
    OwnedDescriptor(const OwnedDescriptor&) = delete;
    OwnedDescriptor& operator=(const OwnedDescriptor&) = delete;
    OwnedDescriptor(OwnedDescriptor&& other) noexcept : held(other.release()) {}
    OwnedDescriptor& operator=(OwnedDescriptor&& other) noexcept {
        if (this != &other) reset(other.release());
        return *this;
    }
    ~OwnedDescriptor() { reset(); }

    [[nodiscard]] int get() const { return held; }
    [[nodiscard]] bool isOpen() const { return held >= 0; }
    [[nodiscard]] int release() { return std::exchange(held, -1); }
    void reset(int descriptor = -1) {
        if (held >= 0) ::close(held);
        held = descriptor;
    }

private:
    int held = -1;
};

}  // namespace vostrel
