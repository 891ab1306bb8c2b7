#pragma once

#include <functional>
#include <memory>
#include <string>

#include "filesystem/WalkAccounting.h"

namespace vostrel::test {

/// Writes down everything that a walk tells its accounting, one line a call, and leaves out what it is told to.
class RecordingAccounting final : public WalkAccounting {
public:
    explicit RecordingAccounting(std::function<void(std::string line)> writeLine) : write(std::move(writeLine)) {}

    /// The number under which a folder is left out; 0 enters it. Everything is entered unless told otherwise.
    std::function<int(const std::string& path)> leaveOut = [](const std::string&) { return 0; };

    [[nodiscard]] std::unique_ptr<FolderNotes> makeNotes() const override { return std::make_unique<Names>(); }

    WalkDecision decide(const WalkedFolder& folder, const FolderNotes& /*around*/) override {
        say("decide ", folder);
        return {static_cast<std::uint8_t>(leaveOut(std::string(folder.path)))};
    }
    void leftOut(const WalkedFolder& folder, WalkDecision decision) override {
        say("leftOut ", folder, " for " + std::to_string(decision.leftOutFor));
    }
    void tooDeep(const WalkedFolder& folder) override { say("tooDeep ", folder); }
    void couldNotOpen(const WalkedFolder& folder, int error) override {
        say("couldNotOpen ", folder, " error " + std::to_string(error));
    }
    void onOtherVolume(const WalkedFolder& folder) override { say("onOtherVolume ", folder); }
    void listed(const WalkedFolder& folder, const FileStatus&, FolderNotes& notes, ListingEnd end, int error) override {
        const std::string ends[] = {"", " error " + std::to_string(error), " stopped"};
        say("listed ", folder, dynamic_cast<Names&>(notes).names + ends[static_cast<int>(end)]);
    }
    void notReached(const WalkedFolder& folder) override { say("notReached ", folder); }
    void finished(const WalkedFolder& folder, bool stopped) override {
        say("finished ", folder, stopped ? " stopped" : "");
    }

private:
    struct Names final : FolderNotes {
        void entry(const FolderEntry& entry) override { names += " " + std::string(entry.name); }
        void clear() override { names.clear(); }
        std::string names;
    };

    void say(const char* what, const WalkedFolder& folder, const std::string& more = {}) const {
        write(what + std::string(folder.path) + more);
    }

    std::function<void(std::string line)> write;
};

}  // namespace vostrel::test
