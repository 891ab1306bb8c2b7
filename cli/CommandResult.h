#pragma once

#include <expected>
#include <string>
#include <utility>
#include <vector>

namespace vostrel::cli {

enum class ExitStatus { done = 0, failed = 1, wrongCommandLine = 2 };

/// Why a command did not do what it was asked to, in whole sentences.
struct Failure {
    /// Whether the command has already written its own document, so that none is to be made of the sentences.
    enum class Document { missing, written };

    std::vector<std::string> sentences;
    ExitStatus status = ExitStatus::failed;
    Document document = Document::missing;
};

using CommandResult = std::expected<void, Failure>;

[[nodiscard]] inline std::unexpected<Failure> failed(std::string sentence) {
    return std::unexpected(Failure{.sentences = {std::move(sentence)}});
}

[[nodiscard]] inline std::unexpected<Failure> wrongCommandLine(std::string sentence) {
    return std::unexpected(Failure{.sentences = {std::move(sentence)}, .status = ExitStatus::wrongCommandLine});
}

}  // namespace vostrel::cli
