#include "app/services/LogState.h"
#include "app/services/clsLogFile.h"
#include "support/VirtualPlatform.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace fldc {
namespace {

const QByteArray header = "******************************************\r\n"
                          "START LOG (2026-11-22 21:05:33)\r\n"
                          "PROCESS ID (4711)\r\n"
                          "COM PORT (7)\r\n"
                          "Download Component Version : 1.21.00\r\n"
                          "\r\n";

class LogFileTest : public testing::Test {
protected:
    LogFileTest()
    {
        logState().enabled = true;
        logState().download = std::make_shared<clsLogFile>(machine.platform);
        logState().download->setFileName(path);
    }

    [[nodiscard]] static clsLogFile& log() { return *logState().download; }
    [[nodiscard]] QByteArray content() { return machine.files.files[path].content; }
    void passSecond() { machine.time.pause(std::chrono::seconds(1)); }

    VirtualPlatform machine;
    const QString path = u"C:\\Tools\\0_Download.log"_s;
};

TEST_F(LogFileTest, EachOpeningAppendsAHeaderEntriesAndAFooter)
{
    log().LogEntry(u"closed"_s, LogEntryType::Note);
    log().OpenLogFile(u"7"_s);
    EXPECT_TRUE(log().LogFileOpen());
    EXPECT_EQ(content(), header);
    passSecond();
    log().OpenLogFile(u"8"_s);
    logDownload(u"Größe 5 €"_s);
    logBytes(LogEntryType::Sent, QByteArray("\x0A\x1B", 2));
    passSecond();
    logHexText(LogEntryType::Received, u"0A1B"_s);
    log().LogEntry(u"other"_s, static_cast<LogEntryType>(3));
    log().CloseLogFile();
    const QByteArray first = header + "2026-11-22 21:05:34 Gr\xF6\xDF"
                                      "e 5 ?\r\n"
                                      "2026-11-22 21:05:34  Sent     : 0A1B\r\n"
                                      "2026-11-22 21:05:35  Received : 0A1B\r\n"
                                      "2026-11-22 21:05:35 other\r\n"
                                      "\r\n"
                                      "END LOG (2026-11-22 21:05:35)\r\n"
                                      "******************************************\r\n";
    EXPECT_EQ(content(), first);
    EXPECT_FALSE(log().LogFileOpen());
    logDownload(u"closed"_s);
    logConfiguration(u"no such log"_s);

    machine.time.setStart(QDateTime(QDate(2026, 11, 22), QTime(21, 5, 31)));
    log().OpenLogFile(u"7"_s);
    logState().download.reset(); // gets its footer
    EXPECT_EQ(content(), first + header +
                             "\r\nEND LOG (2026-11-22 21:05:33)\r\n"
                             "******************************************\r\n");
}

TEST_F(LogFileTest, ALogThatCannotBeOpenedIsShownOnceAndStaysClosed)
{
    machine.files.unwritable.insert(path);
    machine.messages.expectBox(u"Error 13 ..."_s);
    log().OpenLogFile(u"7"_s);
    logDownload(u"text"_s);
    machine.messages.expectBox(u"Error 91 The log file is not open"_s);
    log().CloseLogFile();
}

TEST_F(LogFileTest, ALogThatCannotBeWrittenIsShownOnceAndGivenUp)
{
    log().OpenLogFile(u"7"_s);
    machine.files.unwritable.insert(path); // the disk is full
    machine.messages.expectBox(u"Error 28 ..."_s);
    logDownload(u"lost"_s);
    logDownload(u"lost too"_s);
    log().CloseLogFile(); // shown already
    EXPECT_TRUE(machine.files.inUse.empty());

    machine.files.unwritable.clear();
    log().OpenLogFile(u"7"_s);
    EXPECT_EQ(content(), header + header);
    machine.files.unwritable.insert(path);
    machine.messages.expectBox(u"Error 28 ..."_s);
    log().CloseLogFile();
    EXPECT_TRUE(machine.files.inUse.empty());
}

} // namespace
} // namespace fldc
