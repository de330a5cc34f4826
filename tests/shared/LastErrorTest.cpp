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
    static QString statusOf(std::int32_t number)
    {
        lastError().set(static_cast<Code>(number));
        return statusLine(u"Ready"_s);
    }
};

const QString notDownloaded =
    u"Some of the files selected for download have not been successfully downloaded. The following "
    u"items have not been downloaded to any device:\r\n"_s;

TEST_F(LastErrorTest, TheStatusLineNamesCodeAndMessage)
{
    EXPECT_EQ(statusOf(0), u"Ready"_s);
    EXPECT_EQ(statusOf(12), u"Error 12 - Serial port in use by another application"_s);
    EXPECT_EQ(statusOf(33), u"Error 33 - File does not exist"_s);
    EXPECT_EQ(statusOf(8109), u"Error 8109 - Response - trying to write to the FLASH when the "
                              u"address has not been specified"_s);
    EXPECT_EQ(statusOf(8201), u"Error 8201 - The desired flash address does not exist.  The flash "
                              u"device may be smaller than required."_s);
}

TEST_F(LastErrorTest, AnUnexpectedFailureIsItsOwnDescription)
{
    lastError().setRuntimeError(PlatformFailure(401, u"No window"_s));
    EXPECT_EQ(lastError().number(), 9011);
    EXPECT_EQ(lastError().description(), u"Error 401 - No window"_s);
    EXPECT_EQ(statusLine(u"Ready"_s), u"Error 401 - No window"_s);
    const QString message = u"Runtime Error has occurred - see GetLastError for details"_s;
    EXPECT_EQ(formatMessage(9011), message);
    EXPECT_EQ(statusLineWithoutDetail(u"Ready"_s), u"Error 9011 - "_s + message);
}

TEST_F(LastErrorTest, TheListOfFilesNotDownloadedOutlivesTheCode)
{
    lastError().set(Code::FilesNotDownloaded);
    lastError().setDetail(u"a.srec\r\nb.srec"_s);
    EXPECT_EQ(lastError().description(), notDownloaded + u"a.srec\r\nb.srec"_s);
    lastError().clear();
    EXPECT_EQ(lastError().description(), u"Success"_s);
    EXPECT_EQ(formatMessage(37), notDownloaded + u"a.srec\r\nb.srec"_s);
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
