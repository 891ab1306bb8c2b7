#include "spacemap/NodeSentences.h"

#include <fmt/format.h>

#include "base/GroupedDigits.h"

namespace vostrel {

namespace {

std::string counted(std::int64_t count, std::string_view one, std::string_view many) {
    return fmt::format("{} {}", grouped(count), count == 1 ? one : many);
}

}  // namespace

std::vector<std::string> unmeasuredSentences(const SpaceNode& node) {
    if (node.isMarker()) return {fmt::format("{}.", shownText(*node.unreadable))};
    std::vector<std::string> sentences;
    if (const auto count = node.couldNotReadCount(); count > 0)
        sentences.push_back(counted(count, "place in it could not be read.", "places in it could not be read."));
    if (node.notMeasuredCount > 0) {
        sentences.push_back(counted(node.notMeasuredCount, "place in it was left out:", "places in it were left out:") +
                            " other disks, other accounts' folders and system folders are not measured.");
    }
    if (node.leftOutLibraries > 0)
        sentences.emplace_back("Vostrel does not open the Music and TV libraries: what they hold is not counted.");
    if (node.stopped) sentences.emplace_back("The scan ended before it had seen all of this.");
    return sentences;
}

}  // namespace vostrel
