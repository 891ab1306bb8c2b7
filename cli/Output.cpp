#include "cli/Output.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "base/PrintableText.h"
#include "base/UnicodeText.h"
#include "stores/JSONCoding.h"

namespace vostrel::cli {

namespace {

/// Colour is for eyes: only on a terminal, and never where NO_COLOR asks for none.
bool coloursWanted() {
    const char* refused = std::getenv("NO_COLOR");  // NOLINT(concurrency-mt-unsafe): nothing sets it
    return isatty(STDOUT_FILENO) == 1 && (refused == nullptr || refused[0] == '\0');
}

std::string_view sequence(Output::Style style) {
    switch (style) {
        case Output::Style::bold:
            return "\x1b[1m";
        case Output::Style::dim:
            return "\x1b[2m";
        case Output::Style::good:
            return "\x1b[32m";
        case Output::Style::warning:
            return "\x1b[33m";
        case Output::Style::plain:
            break;
    }
    return "";
}

std::string padding(std::size_t width, std::size_t taken) {
    return std::string(width - std::min(width, taken), ' ');
}

std::vector<std::size_t> widths(const std::vector<Output::Row>& rows, std::size_t columnCount) {
    std::vector<std::size_t> widest(columnCount, 0);
    for (const auto& row : rows) {
        for (std::size_t column = 0; column < std::min(row.size(), columnCount); ++column)
            widest[column] = std::max(widest[column], columns(printable(row[column].content)));
    }
    return widest;
}

}  // namespace

Output::Output(Form chosen) : form(chosen), colour(chosen == Form::people && coloursWanted()) {}

std::string Output::styled(const Text& text) const {
    const auto start = colour ? sequence(text.style) : std::string_view();
    auto shown = printable(text.content);
    return start.empty() ? shown : fmt::format("{}{}\x1b[0m", start, shown);
}

void Output::line(const Row& texts) {
    if (!isForPeople()) return;
    std::string whole;
    for (const Text& text : texts)
        whole += styled(text);
    write(whole + "\n");
}

void Output::plain(std::string_view text) {
    if (isForPeople()) write(text);
}

void Output::table(const std::vector<Row>& rows, const std::vector<Alignment>& alignments) {
    if (!isForPeople()) return;
    const auto widest = widths(rows, alignments.size());
    for (const Row& row : rows) {
        std::string whole;
        std::size_t end = row.size();
        while (end > 0 && row[end - 1].content.empty())
            --end;
        for (std::size_t column = 0; column < end; ++column) {
            const auto space = padding(widest.at(column), columns(printable(row[column].content)));
            const bool isLast = column + 1 == end;
            whole += "  ";
            if (alignments.at(column) == Alignment::right) whole += space;
            whole += styled(row[column]);
            if (alignments.at(column) == Alignment::left && !isLast) whole += space;
        }
        write(whole + "\n");
    }
}

CommandResult Output::document(const JSONValue& value) {
    if (isForPeople()) return {};
    const auto text = JSONCoding::encoder(JSONLayout::pretty).encode(value);
    if (!text) return failed("The result could not be written as JSON: " + text.error().text());
    write(*text + "\n");
    return {};
}

void Output::documentPiece(std::string_view piece) {
    if (!isForPeople()) write(piece);
}

void Output::notice(std::string_view sentence) {
    std::fputs((printable(sentence) + "\n").c_str(), stderr);
}

void Output::failure(const Failure& failure) {
    for (const std::string& sentence : failure.sentences)
        notice(sentence);
    if (isForPeople() || failure.document == Failure::Document::written) return;
    const auto sentences = fmt::format("{}", fmt::join(failure.sentences, "\n"));
    const JSONObject error{{"error", isValidUTF8(sentences) ? sentences : printable(sentences)}};
    if (const auto written = document(error); !written) notice(written.error().sentences.front());
}

void Output::write(std::string_view text) {
    const bool isWritten = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    if (!isWritten && writeError == 0) writeError = errno;
}

int Output::finish() {
    if (std::fflush(stdout) != 0 && writeError == 0) writeError = errno;
    return writeError;
}

std::string counted(std::int64_t count, std::string_view one, std::string_view many) {
    return fmt::format("{} {}", grouped(count), count == 1 ? one : many);
}

}  // namespace vostrel::cli
