#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace vostrel {

/// Keeps the values with the largest sizes among many, a bounded number; of equal sizes those that came first. `size`
/// tells a value's size.
template <class Value, auto size>
class LargestKept {
public:
    explicit LargestKept(std::size_t mostKept) : most(mostKept) {}

    /// Takes the value, unless it is too small. False when something was not kept: this value or one before it.
    [[nodiscard]] bool offer(Value value) {
        const std::size_t arrival = arrived++;
        if (values.size() < most) {
            values.push_back(std::move(value));
            arrivals.push_back(arrival);
            return true;
        }
        if (most == 0) return false;
        if (order.empty()) makeOrder();
        const std::size_t smallest = order.front();
        if (size(value) <= size(values[smallest])) return false;
        std::ranges::pop_heap(order, isKeptRather());
        values[smallest] = std::move(value);
        arrivals[smallest] = arrival;
        std::ranges::push_heap(order, isKeptRather());
        return false;
    }

    /// In no particular order.
    [[nodiscard]] std::vector<Value> take() { return std::move(values); }

private:
    [[nodiscard]] auto isKeptRather() const {
        return [this](std::size_t left, std::size_t right) {
            const auto ofLeft = size(values[left]);
            const auto ofRight = size(values[right]);
            return ofLeft != ofRight ? ofLeft > ofRight : arrivals[left] < arrivals[right];
        };
    }

    void makeOrder() {
        for (std::size_t index = 0; index < values.size(); ++index)
            order.push_back(index);
        std::ranges::make_heap(order, isKeptRather());
    }

    std::size_t most;
    std::size_t arrived = 0;
    std::vector<Value> values;
    std::vector<std::size_t> arrivals;
    /// A heap of the values' places, the next to go first; made when there is too much to keep.
    std::vector<std::size_t> order;
};

}  // namespace vostrel
