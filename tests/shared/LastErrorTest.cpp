#include "shared/LastError.h"
#include "support/Failures.h"

#include <gtest/gtest.h>

#include <thread>

using namespace Qt::StringLiterals;

namespace fldc {
namespace {

class LastErrorTest : public testing::Test {
protected:
    LastErrorTest() { lastError() = {}; }
};

TEST_F(LastErrorTest, AnUnexpectedFailureIsItsOwnDescription)
{
    EXPECT_EQ(statusLine(u"Ready"_s), u"Ready"_s);
    lastError().setRuntimeError(PlatformFailure(401, u"No window"_s));
    EXPECT_EQ(lastError().number(), 9011);
    EXPECT_EQ(statusLine(u"Ready"_s), u"Error 401 - No window"_s);
    EXPECT_EQ(statusLineWithoutDetail(u"Ready"_s),
              u"Error 9011 - Runtime Error has occurred - see GetLastError for details"_s);
}

TEST_F(LastErrorTest, ANumberWithoutAMessageIsAFailureThatChangesNothing)
{
    lastError().set(Code::NoResponse);
    for (const std::int32_t number : {-1, 3, 10, 40, 8114, 9006, 9010, 9012, 10042})
        EXPECT_EQ(failureNumber([&] { return formatMessage(number); }), 5) << number;
    EXPECT_EQ(lastError().description(), u"Timer expired - no response received"_s);
}

TEST_F(LastErrorTest, EachThreadHasItsOwnAndAKeeperTakesBackWhatClosingRecords)
{
    lastError().set(Code::Checksum);
    lastError().setDetail(u"detail"_s);
    std::thread([] { EXPECT_EQ(lastError().number(), 0); }).join();
    {
        const LastErrorKeeper outcome;
        lastError().setRuntimeError(PlatformFailure(1, u"closing"_s));
    }
    EXPECT_EQ(lastError().number(), 55);
    EXPECT_EQ(lastError().detail(), u"detail"_s);
}

} // namespace
} // namespace fldc
