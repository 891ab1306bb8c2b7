#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace vostrel {

/// Ends the process with a message: a count that no longer fits says nothing true any more.
[[noreturn]] inline void endOnOverflow(const char* what) {
    std::fprintf(stderr, "Vostrel stopped: %s does not fit its counter.\n", what);
    std::abort();
}

/// Sum and product for counters and sizes; what does not fit ends the process.
template <class Number>
[[nodiscard]] Number checkedAdd(Number left, Number right, const char* what) {
    Number sum{};
    if (__builtin_add_overflow(left, right, &sum)) endOnOverflow(what);
    return sum;
}

template <class Number>
[[nodiscard]] Number checkedMultiply(Number left, Number right, const char* what) {
    Number product{};
    if (__builtin_mul_overflow(left, right, &product)) endOnOverflow(what);
    return product;
}

/// Sum, difference and product that stop at the ends of the range; for instants, not for counts.
[[nodiscard]] inline std::int64_t saturatingAdd(std::int64_t left, std::int64_t right) {
    std::int64_t sum = 0;
    if (!__builtin_add_overflow(left, right, &sum)) return sum;
    return left < 0 ? std::numeric_limits<std::int64_t>::min() : std::numeric_limits<std::int64_t>::max();
}

[[nodiscard]] inline std::int64_t saturatingSubtract(std::int64_t left, std::int64_t right) {
    std::int64_t difference = 0;
    if (!__builtin_sub_overflow(left, right, &difference)) return difference;
    return left < 0 ? std::numeric_limits<std::int64_t>::min() : std::numeric_limits<std::int64_t>::max();
}

[[nodiscard]] inline std::int64_t saturatingMultiply(std::int64_t left, std::int64_t right) {
    std::int64_t product = 0;
    if (!__builtin_mul_overflow(left, right, &product)) return product;
    return (left < 0) == (right < 0) ? std::numeric_limits<std::int64_t>::max()
                                     : std::numeric_limits<std::int64_t>::min();
}

}  // namespace vostrel
