#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <syslog.h>

#include "platform/SystemLog.h"

namespace vostrel {
namespace {

TEST(SystemLogTest, namesTheApplicationAndTheCategoryInEachLine) {
    ::openlog("test", LOG_PERROR, LOG_USER);
    testing::internal::CaptureStderr();
    logError("Log", "Could not write 100%s");
    logNotice("Runner", "done");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "test: app.vostrel.Vostrel [Log] Could not write 100%s\ntest: app.vostrel.Vostrel [Runner] done\n");
    ::closelog();
}

}  // namespace
}  // namespace vostrel
