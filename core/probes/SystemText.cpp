#include "probes/SystemText.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <span>
#include <system_error>

#include "probes/MemoryAmount.h"

namespace vostrel {

namespace {

using Words = std::vector<std::string_view>;

constexpr std::string_view blanks = " \t\r\n\v\f";

/// The pieces between any of the separators, none of them empty.
Words pieces(std::string_view text, std::string_view separators) {
    Words found;
    for (auto start = text.find_first_not_of(separators); start != std::string_view::npos;
         start = text.find_first_not_of(separators, start)) {
        const auto end = std::min(text.find_first_of(separators, start), text.size());
        found.push_back(text.substr(start, end - start));
        start = end;
    }
    return found;
}

Words lines(std::string_view text) {
    return pieces(text, "\r\n");
}

bool isNamePart(char letter) {
    return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') || (letter >= '0' && letter <= '9') ||
           letter == '_' || letter == '-';
}

bool isNameWithDots(std::string_view word) {
    if (!word.contains('.') || word.contains("..") || word.starts_with('.') || word.ends_with('.')) return false;
    return std::ranges::all_of(word, [](char letter) { return letter == '.' || isNamePart(letter); });
}

/// Where the columns of a table stand. Only a command holds blanks, so that columns before it count from a line's
/// first word, and those after it from its last.
struct Columns {
    std::size_t count = 0;
    std::size_t pid = 0;
    std::size_t command = 0;
    std::size_t memory = 0;

    static std::optional<Columns> ofHeader(std::string_view line) {
        const Words names = pieces(line, blanks);
        const auto place = [&](std::string_view name) {
            return static_cast<std::size_t>(std::ranges::find(names, name) - names.begin());
        };
        const Columns columns{
            .count = names.size(), .pid = place("PID"), .command = place("COMMAND"), .memory = place("MEM")};
        if (std::max({columns.pid, columns.command, columns.memory}) == columns.count) return std::nullopt;
        return columns;
    }

    [[nodiscard]] std::optional<MemoryRow> row(std::string_view line) const {
        const Words words = pieces(line, blanks);
        if (words.size() < count) return std::nullopt;
        const std::size_t further = words.size() - count;  // words of the command beyond its first
        const auto wordOf = [&](std::size_t column) { return words[column < command ? column : column + further]; };
        const auto pidEnd = std::min(wordOf(pid).find_last_of("0123456789"), wordOf(pid).size() - 1) + 1;
        const auto digits = wordOf(pid).substr(0, pidEnd);  // without the mark that may follow them
        std::string_view amount = wordOf(memory);
        if (amount.ends_with('+') || amount.ends_with('-')) amount.remove_suffix(1);
        const auto bytes = parseMemoryAmount(amount);
        MemoryRow found;
        const auto number = std::from_chars(digits.data(), digits.data() + digits.size(), found.pid);
        if (number.ec != std::errc() || number.ptr != digits.data() + digits.size() || found.pid < 0 || !bytes)
            return std::nullopt;
        const std::string_view last = words[command + further];
        found.command = std::string(words[command].data(), last.data() + last.size());
        found.bytes = *bytes;
        return found;
    }
};

/// Takes " name = 4096.00M" away from the front of the text, a blank before the name and a unit after the number.
std::optional<std::int64_t> takeAmount(std::string_view& text, std::string_view name) {
    const auto skipBlanks = [&] { text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size())); };
    const auto take = [&](std::string_view word) {
        if (!text.starts_with(word)) return false;
        text.remove_prefix(word.size());
        skipBlanks();
        return true;
    };
    const auto length = text.size();
    skipBlanks();
    if (text.size() == length || !take(name) || !take("=")) return std::nullopt;
    const std::string_view amount = text.substr(0, text.find_first_of(blanks));
    text.remove_prefix(amount.size());
    const bool hasUnit = !amount.empty() && std::string_view("BKMGT").contains(amount.back());
    return hasUnit ? parseMemoryAmount(amount) : std::nullopt;
}

}  // namespace

std::optional<SwapUsage> parseSwapUsage(std::string_view text) {
    constexpr std::string_view beginning = "vm.swapusage:";
    const auto start = text.find(beginning);
    if (start == std::string_view::npos) return std::nullopt;
    text.remove_prefix(start + beginning.size());
    const auto total = takeAmount(text, "total");
    const auto used = takeAmount(text, "used");
    const auto unused = takeAmount(text, "free");
    if (!total || !used || !unused) return std::nullopt;
    return SwapUsage{.totalBytes = *total, .usedBytes = *used, .freeBytes = *unused};
}

std::optional<std::vector<std::string>> parseLocalSnapshots(std::string_view text) {
    if (!text.starts_with("Snapshots for disk ") && !text.starts_with("Snapshots for volume group containing disk "))
        return std::nullopt;
    std::vector<std::string> names;
    const Words all = lines(text);
    for (const std::string_view line : std::span(all).subspan(1)) {
        const Words words = pieces(line, blanks);
        if (!words.empty() && isNameWithDots(words.front())) names.emplace_back(words.front());
    }
    return names;
}

std::optional<std::vector<MemoryRow>> parseTopMemory(std::string_view text) {
    std::optional<Columns> columns;
    std::vector<MemoryRow> rows;
    for (const std::string_view line : lines(text)) {
        if (!columns) {
            columns = Columns::ofHeader(line);
        } else if (auto row = columns->row(line)) {
            rows.push_back(*std::move(row));
        }
    }
    return rows.empty() ? std::nullopt : std::optional(std::move(rows));
}

}  // namespace vostrel
