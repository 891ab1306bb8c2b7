#pragma once

#include <functional>
#include <memory>
#include <string>

#include "filesystem/WalkAccounting.h"

namespace vostrel::test {

/// Writes down everything that a walk tells its accounting, one line a call, and leaves out what it is told to.
class RecordingAccounting final : public WalkAccounting {
public:
    using Write = std::function<void(std::string line)>;
    explicit RecordingAccounting(Write writeLine) : write(std::move(writeLine)) {}

    /// The number under which a folder is left out; 0 enters it. Everything is entered unless told otherwise.
    std::function<int(const std::string& path)> leaveOut = [](const std::string&) { return 0; };

    [[nodiscard]] std::unique_ptr<FolderNotes> makeNotes() const override { return std::make_unique<Names>(); }

    WalkDecision decide(const WalkedFolder& folder) override {
        write(line("decide", folder));
        return {static_cast<std::uint8_t>(leaveOut(std::string(folder.path)))};
    }
    void leftOut(const WalkedFolder& folder, WalkDecision decision) override {
        write(line("leftOut", folder) + " for " + std::to_string(decision.leftOutFor));
    }
    void tooDeep(const WalkedFolder& folder) override { write(line("tooDeep", folder)); }
    void couldNotOpen(const WalkedFolder& folder, int error) override {
        write(line("couldNotOpen", folder) + " error " + std::to_string(error));
    }
    void onOtherVolume(const WalkedFolder& folder) override { write(line("onOtherVolume", folder)); }
    void listed(const WalkedFolder& folder, const FileStatus&, FolderNotes& notes, ListingEnd end, int error) override {
        std::string text = line("listed", folder) + dynamic_cast<Names&>(notes).names;
        if (end == ListingEnd::stopped) text += " stopped";
        if (end == ListingEnd::failed) text += " error " + std::to_string(error);
        write(text);
    }
    void notReached(const WalkedFolder& folder) override { write(line("notReached", folder)); }
    void finished(const WalkedFolder& folder, bool stopped) override {
        write(line("finished", folder) + (stopped ? " stopped" : ""));
    }

private:
    struct Names final : FolderNotes {
        void entry(const FolderEntry& entry) override { names += " " + std::string(entry.name); }
        void clear() override { names.clear(); }
        std::string names;
    };

    static std::string line(std::string_view what, const WalkedFolder& folder) {
        return std::string(what) + " " + std::string(folder.path);
    }

    Write write;
};

}  // namespace vostrel::test
