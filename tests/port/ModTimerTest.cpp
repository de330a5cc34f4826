#include "port/modTimer.h"
#include "support/VirtualPlatform.h"

#include <gtest/gtest.h>

namespace fldc {
namespace {

TEST(ModTimer, FiresOnceAndHoldsNothingAfterwards)
{
    VirtualTime time;
    modTimer timer(time);
    for (int round = 0; round < 2; ++round) {
        EXPECT_TRUE(timer.StartTimer(std::chrono::milliseconds(10)));
        EXPECT_FALSE(timer.blnTimerExpired());
        time.pause(std::chrono::milliseconds(35));
        EXPECT_TRUE(timer.blnTimerExpired());
        EXPECT_EQ(time.timersRunning(), 0);
    }
    timer.StopTimer();
}

} // namespace
} // namespace fldc
