#pragma once

#include <atomic>
#include <string>
#include <string_view>

namespace vostrel::test {

/// A call of the system that is made to fail in every thread of the program: the `nth` of its kind, and unless it fails
/// once, all after it. A program that is started with "CALL NTH ERROR once" or "CALL NTH ERROR forever" in
/// VOSTREL_TEST_FAULT has such a fault from the beginning.
///
/// Every program that holds these calls also ends itself when it would remove or rename anything outside the folders of
/// tests: what lies at VOSTREL_TEST_FOLDER, or, where that is not set, in the temporary folders that tests make.
class CallFault {
public:
    /// In place of an error's number: the program is killed.
    static constexpr int kill = -1;
    enum class Lasting { once, forever };

    /// `call` is "open", "unlinkat", … by the name of the most general form, "durable" for everything that changes what
    /// is on a disk, or "growing" for what takes room there. One at a time.
    CallFault(std::string call, int nth, int error, Lasting lasting);
    CallFault(const CallFault&) = delete;
    CallFault& operator=(const CallFault&) = delete;
    ~CallFault();

    /// How many calls of its kind there were so far.
    [[nodiscard]] int met() const { return count.load(); }
    /// The error that a call must fail with now, or 0: asked by whatever stands in for a call, a function that a test
    /// injects too. `meansDisk` is "durable" or "growing" where the call is of that kind as well.
    [[nodiscard]] static int errorOf(std::string_view call, std::string_view meansDisk = {});

private:
    [[nodiscard]] int meet();

    std::string kind;
    int first;
    int code;
    bool lasts;
    std::atomic<int> count = 0;
};

}  // namespace vostrel::test
