#include "probes/MemoryConsumers.h"

#include <algorithm>
#include <functional>
#include <map>
#include <string>
#include <utility>

#include "base/Checked.h"

namespace vostrel {

std::vector<MemoryConsumer> memoryConsumers(const std::vector<MemoryRow>& rows) {
    std::map<std::string, MemoryConsumer> byName;
    for (const MemoryRow& row : rows) {
        MemoryConsumer& consumer = byName[row.command];
        consumer.name = row.command;
        // Another program's text must not end this one, however large the numbers in it.
        consumer.bytes = saturatingAdd(consumer.bytes, row.bytes);
        ++consumer.processes;
    }
    std::vector<MemoryConsumer> consumers;
    for (auto& [name, consumer] : byName)
        consumers.push_back(std::move(consumer));
    std::ranges::stable_sort(consumers, std::greater(), &MemoryConsumer::bytes);
    return consumers;
}

}  // namespace vostrel
