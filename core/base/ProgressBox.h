#pragma once

#include <mutex>
#include <utility>

namespace vostrel {

/// A lock and a value: long work puts in how far it is, an interface looks whenever it likes. Thread-safe.
template <class Value>
class ProgressBox {
public:
    void set(Value newest) {
        const std::lock_guard guard(lock);
        value = std::move(newest);
    }
    [[nodiscard]] Value read() const {
        const std::lock_guard guard(lock);
        return value;
    }
    /// As though nothing had been put in yet.
    void reset() { set({}); }

private:
    mutable std::mutex lock;
    Value value{};
};

}  // namespace vostrel
