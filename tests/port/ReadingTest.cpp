#include "PortTest.h"

using namespace Qt::StringLiterals;

namespace fldc {
namespace {

QString repeated(int count, const char* lines)
{
    return QString::fromLatin1(lines).repeated(count);
}

// ---- Replies, however they are cut into pieces ----------------------------------------------

TEST_F(PortTest, RepliesAreReadToTheirEnd)
{
    const struct {
        const char* bytes;
        const char16_t* marker;
        const char16_t* text;
        bool terminated;
    } cases[]{
        {"81 01 AF AF", u"AFAF", u"8101AFAF", true},
        {"00 AF AF 00 AF AF", u"AFAF", u"00AFAF00AFAF", true}, // only whole words count
        {"AE AE 00 03 AE AE AF AF", u"AFAF", u"AEAE0003AEAEAFAF", true},
        {"43 01 12 34 AA CA", u"AFAF", u"43011234AACA", false},
        {"43 01 12 34 AA CA AF AF", u"AFAF", u"43011234AACA", false},
        {"43 00 BC FF", u"AFAF", u"4300BCFF", false},
        {"AE AE 43 03 AF AF AE AE 43 01 12 34", u"AFAF", u"AEAE4303AFAFAEAE43011234", false},
        {"AF AF 3F 2A", u"3F", u"AFAF3F", false},
        {"02 A1 2A", u"2A", u"02A1", false},             // across the boundary of two bytes
        {"0A EA E2 A0 2A", u"2A", u"0AEAE2A02A", false}, // what a busy mark ended is over
        {"00 12 34 56", u"123456", u"00123456", false},
    };
    open();
    for (const auto& one : cases) {
        for (const int piece : {0, 1, 2, 3, 5}) {
            line().split(piece, std::chrono::milliseconds(400));
            line().play(u"< "_s + QString::fromLatin1(one.bytes));
            bool terminated = false;
            const auto text = port.ReadBinary(500, QString::fromUtf16(one.marker), &terminated);
            EXPECT_EQ(text, QString::fromUtf16(one.text)) << "in pieces of " << piece;
            EXPECT_EQ(code(), 0);
            EXPECT_EQ(terminated, one.terminated);
            machine.time.pause(std::chrono::seconds(5)); // what is left over arrives and goes
            line().setInBufferCount(0);
        }
    }
}

// ---- Time-outs ------------------------------------------------------------------------------

struct WaitCase {
    QString script;
    const char16_t* marker;
    int code;
    int ends; ///< milliseconds
};

class Waits : public PortTest, public testing::WithParamInterface<WaitCase> {};

TEST_P(Waits, EndAfterAWholePeriodOf500MsWithoutAByte)
{
    open();
    line().play(GetParam().script);
    const QString text = port.ReadBinary(500, QString::fromUtf16(GetParam().marker), nullptr);
    EXPECT_EQ(code(), GetParam().code);
    EXPECT_EQ(text.isEmpty(), code() != 0);
    EXPECT_EQ(now(), GetParam().ends);
}

INSTANTIATE_TEST_SUITE_P(
    Port, Waits,
    testing::Values(
        WaitCase{u""_s, u"AFAF", 42, 500}, WaitCase{u""_s, u"2A", 42, 500},
        // Periods are counted from the start: a byte keeps its own period, and nothing more.
        WaitCase{u"<10 00"_s, u"AFAF", 42, 1000}, WaitCase{u"<499 00"_s, u"2A", 42, 1000},
        WaitCase{u"<499 00\n<502 2A"_s, u"2A", 42, 1000},
        WaitCase{u"<10 AF\n<980 00\n<500 AF AF"_s, u"AFAF", 0, 1490},
        WaitCase{repeated(40, "<250 00\n") + u"<250 2A"_s, u"2A", 0, 10250},
        WaitCase{repeated(40, "<250 AE\n") + u"<250 AF AF"_s, u"AFAF", 0, 10250},
        // A busy mark starts the period anew.
        WaitCase{u"<400 AE AE\n<490 AE AE"_s, u"AFAF", 42, 1890},
        WaitCase{u"<400 AE AE\n<490 AE AE"_s, u"2A", 42, 1890},
        WaitCase{u"< 43 02 AF AF 12 34"_s, u"AFAF", 42, 1000}, // its checksum is missing
        WaitCase{repeated(50, "<400 AE AE\n") + u"< 2A"_s, u"2A", 0, 20001},
        WaitCase{repeated(51, "<400 AE AE\n") + u"< 2A"_s, u"2A", 44, 20400},
        WaitCase{repeated(60, "<400 AE AE\n") + u"< AF AF"_s, u"AFAF", 0, 24001},
        // A device that goes on sending has no reply to give.
        WaitCase{repeated(200, "<400 00\n"), u"AFAF", 44, 60000},
        WaitCase{repeated(200, "<400 00\n"), u"2A", 44, 60000},
        WaitCase{u"< "_s + u"00"_s.repeated(65'535) + u" 2A"_s, u"2A", 0, 1},
        WaitCase{u"< "_s + u"00"_s.repeated(65'536) + u" 2A"_s, u"2A", 44, 1},
        WaitCase{u"< "_s + u"00"_s.repeated(65'534) + u"\n<400 AE AE\n"_s +
                     repeated(200, "<400 00\n"),
                 u"AFAF", 44, 60401},
        // Nobody is there to give up a radio that is busy.
        WaitCase{repeated(2400, "<400 AE AE\n"), u"AFAF", 44, 900000}));

TEST_F(PortTest, ABusyRadioIsAwaitedAsLongAsAUserIsThere)
{
    open();
    userPresent = true;
    after(2'400'000, [this] { userPresent = false; });
    line().play(repeated(8000, "<400 AE AE\n"));
    port.ReadBinary(500, u"AFAF"_s, nullptr);
    EXPECT_EQ(code(), 44);
    EXPECT_EQ(now(), 2'400'000);
}

// ---- The start-up byte ----------------------------------------------------------------------

struct StartUpCase {
    QString script;
    bool doneWordToo;
    int code;
    bool applicationRequired;
    int ends; ///< milliseconds
};

class StartUp : public PortTest, public testing::WithParamInterface<StartUpCase> {};

TEST_P(StartUp, IsAwaitedForTwoSeconds)
{
    open();
    line().play(GetParam().script);
    bool required = false;
    port.WaitForReset(required, GetParam().doneWordToo);
    EXPECT_EQ(code(), GetParam().code);
    EXPECT_EQ(required, GetParam().applicationRequired);
    EXPECT_EQ(now(), GetParam().ends);
}

INSTANTIATE_TEST_SUITE_P(
    Port, StartUp,
    testing::Values(
        StartUpCase{u"< 76"_s, false, 0, false, 1}, StartUpCase{u"< 56"_s, false, 0, true, 1},
        StartUpCase{u"< 00 76"_s, false, 0, true, 1},
        StartUpCase{u"< 05\n<1000 6F"_s, false, 0, true, 1001},
        StartUpCase{u"< 07\n<1000 6F"_s, false, 0, true, 1001},
        StartUpCase{u"< AF AF"_s, false, 21, false, 2000},
        StartUpCase{u"< AF AF"_s, true, 0, true, 1}, StartUpCase{u"< 0A FA F0"_s, true, 0, true, 1},
        StartUpCase{u""_s, true, 21, false, 2000},
        StartUpCase{repeated(10, "<300 00\n"), false, 21, false, 2000}, // other bytes buy no time
        StartUpCase{u"<1900 AE AE\n<1900 76"_s, false, 0, false, 3800},
        StartUpCase{u"<1900 00 AE AE"_s, false, 21, false, 3900},
        StartUpCase{repeated(50, "<100 AE AE\n") + u"< 56"_s, false, 0, true, 5001},
        StartUpCase{repeated(51, "<100 AE AE\n") + u"< 56"_s, false, 21, false, 5100}));

} // namespace
} // namespace fldc
