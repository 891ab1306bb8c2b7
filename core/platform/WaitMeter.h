#pragma once

#include <cstdint>

namespace vostrel {

/// Tells whether the calling thread had to wait for the disk while it did something; being put aside for other
/// threads is not waiting. One object a thread.
class WaitMeter {
public:
    void start();
    [[nodiscard]] bool hasWaitedSinceStart() const;

private:
    std::int64_t atStart = 0;
};

}  // namespace vostrel
