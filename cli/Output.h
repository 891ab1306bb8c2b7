#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/GroupedDigits.h"
#include "cli/CommandResult.h"
#include "stores/JSONValue.h"

namespace vostrel::cli {

/// Where results go: text for people, or one JSON document for programs; sentences about trouble go to standard error
/// in both. What is written is made printable, so callers pass names and sentences as they are.
class Output {
public:
    enum class Form { people, json };
    enum class Style { plain, bold, dim, good, warning };

    /// One piece of a line in a style of its own.
    struct Text {
        Text(const char* text) : content(text) {}
        Text(std::string text) : content(std::move(text)) {}
        Text(std::string text, Style chosen) : content(std::move(text)), style(chosen) {}

        std::string content;
        Style style = Style::plain;
    };
    using Row = std::vector<Text>;
    enum class Alignment { left, right };

    explicit Output(Form chosen);

    [[nodiscard]] bool isForPeople() const { return form == Form::people; }

    /// One line for people; nothing in the JSON form.
    void line(const Row& texts = {});
    /// Text as it stands, for people.
    void plain(std::string_view text);
    /// Rows whose columns stand under one another, each line set in by two spaces.
    void table(const std::vector<Row>& rows, const std::vector<Alignment>& alignments);
    /// The JSON document; nothing in the form for people.
    [[nodiscard]] CommandResult document(const JSONValue& value);
    /// The next piece of a document that is too large to be held; nothing in the form for people.
    void documentPiece(std::string_view piece);
    /// A sentence that people should know and that is no failure: to standard error.
    void notice(std::string_view sentence);
    /// Why a command failed: to standard error, and as the document {"error": …}.
    void failure(const Failure& failure);
    /// The error number that kept something of this from standard output; 0 when everything has reached it.
    [[nodiscard]] int finish();

private:
    [[nodiscard]] std::string styled(const Text& text) const;
    void write(std::string_view text);

    Form form;
    bool colour;
    int writeError = 0;
};

/// "1 file", "3 files".
[[nodiscard]] std::string counted(std::int64_t count, std::string_view one, std::string_view many);

}  // namespace vostrel::cli
