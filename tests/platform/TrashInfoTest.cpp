#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/TrashInfo.h"
#include "support/TemporaryFolder.h"

namespace vostrel {
namespace {

TEST(TrashInfoTest, readsAndWritesLocalTimeAndTheLaterOfAnHourThatComesTwice) {
    const TemporaryFolder trash;
    const char* before = std::getenv("TZ");
    const std::string zone = before ? before : "";
    setenv("TZ", "Europe/Berlin", 1);
    const auto dateOf = [&](const std::string& text) {
        trash.makeFile("info/a.trashinfo", "[Trash Info]\r\nDeletionDate=" + text + "\r\n");
        return deletionDate(trash / "files/a");
    };
    EXPECT_EQ(dateOf("2025-01-15T12:00:00"), Date::fromSeconds(1'736'938'800));
    EXPECT_EQ(dateOf("2025-07-01T12:00:00"), Date::fromSeconds(1'751'364'000));
    EXPECT_EQ(dateOf("2025-10-26T02:30:00"), Date::fromSeconds(1'761'442'200));
    for (const std::int64_t seconds : {1'736'938'800, 1'751'364'000, 1'761'442'200}) {
        trash.makeFile("info/written.trashinfo", trashInfoText("x", Date::fromSeconds(seconds, 999'999'999)));
        EXPECT_EQ(deletionDate(trash / "files/written"), Date::fromSeconds(seconds));
    }
    EXPECT_EQ(trashInfoText("/a b/-._~é\n%", Date::fromSeconds(1'751'364'000)),
              "[Trash Info]\nPath=/a%20b/-._~%C3%A9%0A%25\nDeletionDate=2025-07-01T12:00:00\n");
    const std::string time = "2025-01-01T10:00:00";
    for (const std::string& text :
         {std::string(), std::string("2025-01-01"), "2025-13-01" + time.substr(10), "2025-02-31" + time.substr(10),
          "1969-12-31" + time.substr(10), "0001-01-01" + time.substr(10), time + "Z", time + ".5", time + " ",
          " " + time, time + std::string("\0junk", 5), std::string("2025- 1- 1T 1: 1: 1"), time.substr(0, 17) + "60",
          time.substr(0, 11) + "24:00:00", "20" + time})
        EXPECT_EQ(dateOf(text), std::nullopt) << text;
    before ? setenv("TZ", zone.c_str(), 1) : unsetenv("TZ");
}

}  // namespace
}  // namespace vostrel
