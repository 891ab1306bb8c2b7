#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "probes/MemoryAmount.h"
#include "probes/MemoryConsumers.h"
#include "probes/SystemText.h"

namespace vostrel {
namespace {

constexpr std::int64_t KiB = 1024;
constexpr std::int64_t MiB = 1024 * KiB;

TEST(SystemText, readsAmountsToTheByte) {
    const std::pair<const char*, std::optional<std::int64_t>> cases[] = {
        {"0.00M", 0},
        {"455.25M", 477'364'224},
        {"1.5K", 1536},
        {"7", 7},
        {"1.4B", 1},
        {"1.5B", 2},
        {"8388607T", 8'388'607LL << 40},
        {"8388608T", std::nullopt},
        {"", std::nullopt},
        {"M", std::nullopt},
        {".5M", std::nullopt},
        {"1.M", std::nullopt},
        {"1,5M", std::nullopt},
        {"-1M", std::nullopt},
        {"1MB", std::nullopt},
        {"0x10", std::nullopt},
    };
    for (const auto& [text, bytes] : cases)
        EXPECT_EQ(parseMemoryAmount(text), bytes) << text;
    EXPECT_EQ(parseMemoryAmount(std::string(400, '9') + "." + std::string(400, '9') + "T"), std::nullopt);
}

TEST(SystemText, readsSwapUse) {
    const SwapUsage usage{
        .totalBytes = 4096 * MiB, .usedBytes = 2455 * MiB + MiB / 2, .freeBytes = 1640 * MiB + MiB / 2};
    const std::pair<const char*, std::optional<SwapUsage>> cases[] = {
        {"vm.swapusage: total = 4096.00M  used = 2455.50M  free = 1640.50M  (encrypted)\n", usage},
        {"warning\nvm.swapusage:\ttotal=4.00G used=2455.50M free=1640.50M", usage},
        {"vm.swapusage: total = 0.00M  used = 0.00M  free = 0.00M", SwapUsage{}},
        {"", std::nullopt},
        {"total = 4096.00M  used = 2455.50M  free = 1640.50M", std::nullopt},
        {"vm.swapusage: total = 4096.00  used = 2455.50M  free = 1640.50M", std::nullopt},
        {"vm.swapusage: total = 4096.00M  used = 2455.50M  free", std::nullopt},
        {"vm.swapusage: total = 4096.00M  free = 2455.50M  used = 1640.50M", std::nullopt},
        {"vm.swapusage: total 4096.00M  used = 2455.50M  free = 1640.50M", std::nullopt},
        {"vm.swapusage: total = 9999999T  used = 2455.50M  free = 1640.50M", std::nullopt},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(parseSwapUsage(text), expected) << text;
}

TEST(SystemText, readsTheNamesOfLocalSnapshots) {
    using Names = std::vector<std::string>;
    const std::pair<const char*, std::optional<Names>> cases[] = {
        {"Snapshots for volume group containing disk /:\n"
         "com.apple.TimeMachine.2024-05-10-113226.local\n"
         "com.apple.TimeMachine.2023-09-12-174710.local (dataless)\n"
         "com.apple.os.update-0A1B2C\n",
         Names{"com.apple.TimeMachine.2024-05-10-113226.local", "com.apple.TimeMachine.2023-09-12-174710.local",
               "com.apple.os.update-0A1B2C"}},
        {"Snapshots for disk /:\r\n\r\n  one.two\r\nno name\nthree..four\n.five\n$(rm).six\n", Names{"one.two"}},
        {"Snapshots for disk /:", Names{}},
        {"", std::nullopt},
        {"com.apple.TimeMachine.2024-05-10-113226.local\n", std::nullopt},
        {"tmutil: no such volume\n", std::nullopt},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(parseLocalSnapshots(text), expected) << text;
}

TEST(SystemText, readsAndSumsTheTableOfMemory) {
    const std::string summary =
        "Processes: 712 total, 8 running, 704 sleeping, 3516 threads\n2026/05/28 03:43:04\n"
        "PhysMem: 15G used (2497M wired, 7090M compressor), 103M unused.\n\n";
    const auto rows = parseTopMemory(summary +
                                     "PID    COMMAND          MEM  \n"
                                     "75323  firefox          1423M+\n"
                                     "63479* Google Chrome He 536M\n"
                                     "574    WindowServer     927M-\n"
                                     "580    Google Chrome He 891M\n"
                                     "99999999999 huge        1M\n"
                                     "12     cut of\n"
                                     "13     N/A              N/A\n"
                                     "0      kernel_task      0B\n");
    ASSERT_TRUE(rows);
    EXPECT_EQ(memoryConsumers(*rows), (std::vector<MemoryConsumer>{{"Google Chrome He", 1427 * MiB, 2},
                                                                   {"firefox", 1423 * MiB, 1},
                                                                   {"WindowServer", 927 * MiB, 1},
                                                                   {"kernel_task", 0, 1}}));
    EXPECT_EQ(parseTopMemory("COMMAND  PID MEM\nGoogle Chrome He 580 2K\n"),
              (std::vector<MemoryRow>{{580, "Google Chrome He", 2 * KiB}}));
    for (const char* damaged : {"", "PID COMMAND MEM\n", "1 firefox 2M\n", "PID COMMAND\n1 firefox 2M\n"})
        EXPECT_EQ(parseTopMemory(damaged), std::nullopt) << damaged;

    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(memoryConsumers({{1, "a", most}, {2, "a", 1}}), (std::vector<MemoryConsumer>{{"a", most, 2}}));
}

}  // namespace
}  // namespace vostrel
