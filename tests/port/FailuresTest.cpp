#include "PortTest.h"

using namespace Qt::StringLiterals;

namespace fldc {
namespace {

const QByteArray someBytes("\x38\x00\xC7\xFF", 4);

// ---- What a failure of the line means -------------------------------------------------------

using Operation = std::function<void(clsSerial&)>;
const Operation openIt = [](clsSerial& port) { port.OpenPort(); };
const Operation closeIt = [](clsSerial& port) { port.ClosePort(); };
const Operation writeIt = [](clsSerial& port) { port.WriteBinary(someBytes); };
const Operation resetIt = [](clsSerial& port) { port.ResetRadio(); };
const Operation speedIt = [](clsSerial& port) { port.SetPortParameters(u"19200"_s, 1); };

struct FailureCase {
    Operation operation;
    bool opened; ///< before the operation
    const char* fails;
    std::vector<std::pair<int, int>> codes; ///< of each failure number
};

class Failures : public PortTest, public testing::WithParamInterface<FailureCase> {};

TEST_P(Failures, AreRecordedAsACode)
{
    for (const auto& [failure, expected] : GetParam().codes) {
        if (GetParam().opened && !line().portOpen())
            open();
        line().play(QString::fromLatin1(GetParam().fails).arg(failure));
        lastError().set(Code::UnknownRadioError);
        GetParam().operation(port);
        EXPECT_EQ(code(), expected) << failure;
        EXPECT_EQ(line().settings(), u"9600,n,8,1"_s); // a line that can't be closed keeps its own
    }
}

INSTANTIATE_TEST_SUITE_P(
    Port, Failures,
    testing::Values(
        FailureCase{openIt, false, "! open %1", {{8005, 12}, {8002, 11}, {8012, 15}, {13, 15}}},
        FailureCase{
            closeIt, true, "! close %1", {{8012, 0}, {8018, 0}, {8005, 12}, {8002, 15}, {5, 15}}},
        FailureCase{
            writeIt, true, "! write %1", {{8018, 12}, {8005, 12}, {8002, 11}, {8012, 15}, {5, 15}}},
        FailureCase{resetIt, true, "! write %1", {{8018, 12}, {5, 15}}},
        FailureCase{speedIt, true, "! close %1", {{8005, 12}, {5, 15}}}));

TEST_F(PortTest, AnOpenLineIsNotOpenedAgainAndAClosedOneNotWritten)
{
    port.ClosePort();
    EXPECT_EQ(code(), 0);
    port.WriteBinary(someBytes);
    EXPECT_EQ(code(), 12);
    open();
    port.OpenPort();
    EXPECT_EQ(code(), 12);
    line().play("! open 8002");
    port.SetPortParameters(u"19200"_s, 1);
    EXPECT_EQ(code(), 11);
    EXPECT_EQ(line().settings(), u"19200,n,8,1"_s);
}

// ---- The three waits ------------------------------------------------------------------------

/// A wait of each kind, and the code that it gives for a line that fails.
struct Wait {
    Operation operation;
    int lineFailed;
};

class EachWait : public PortTest, public testing::WithParamInterface<Wait> {
protected:
    void wait() { GetParam().operation(port); }
};

TEST_P(EachWait, EndsWhenTheLineHangsUpOrIsClosed)
{
    open();
    after(300, [this] { port.ClosePort(); });
    wait();
    EXPECT_EQ(code(), GetParam().lineFailed);
    EXPECT_EQ(now(), 300);
    open();
    after(300, [this] { line().hangUp(); });
    wait();
    EXPECT_EQ(code(), GetParam().lineFailed);
    EXPECT_EQ(now(), 600);
}

TEST_P(EachWait, EndsWhenItIsCancelledAndNothingMoreIsSentOrAwaited)
{
    open();
    line().play("<300 AE");
    after(300, [this] { cancellation->request(); });
    wait();
    EXPECT_EQ(now(), 300);
    for (const Operation& next : {GetParam().operation, writeIt, resetIt, speedIt, openIt}) {
        EXPECT_EQ(code(), 1);
        lastError().clear();
        next(port);
    }
    EXPECT_EQ(code(), 1);
    EXPECT_EQ(now(), 300);
    port.ClosePort();
    EXPECT_EQ(code(), 0);
    EXPECT_FALSE(line().portOpen());
}

TEST_P(EachWait, ServesEventsWhileBytesKeepComing)
{
    open();
    line().say(QByteArray("\x2A") + QByteArray(10'000, '\0'));
    port.ReadBinary(500, u"2A"_s, nullptr);
    after(0, [this] { cancellation->request(); });
    wait();
    EXPECT_EQ(code(), 1);
    EXPECT_GT(line().inBufferCount(), 9'900);
}

INSTANTIATE_TEST_SUITE_P(
    Port, EachWait,
    testing::Values(Wait{[](clsSerial& port) { port.ReadBinary(500, u"AFAF"_s, nullptr); }, 15},
                    Wait{[](clsSerial& port) { port.ReadBinary(500, u"2A"_s, nullptr); }, 15},
                    Wait{[](clsSerial& port) {
                             bool required = false;
                             port.WaitForReset(required, true);
                         },
                         21}));

TEST_F(PortTest, StaleBytesGoBeforeARequestAndNotWithItsReply)
{
    open();
    line().say("stale");
    line().play("> 38 00 C7 FF\n< 43 01 12 34 AA CA");
    port.WriteBinary(someBytes);
    EXPECT_EQ(port.ReadBinary(500, u"AFAF"_s, nullptr), u"43011234AACA"_s);
    EXPECT_EQ(code(), 0);
}

} // namespace
} // namespace fldc
