#include "Helpers.h"
#include "PseudoTerminal.h"

#include "platform/qt/SettingsFile.h"
#include "platform/qt/serial/PortListing.h"
#include "platform/qt/serial/SerialControl.h"

#include <QAbstractEventDispatcher>
#include <QFile>
#include <QTemporaryDir>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdarg>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/syscall.h>
#include <sys/time.h>

namespace {

using Clock = std::chrono::steady_clock;

/// What the program asks of the system. A pseudo-terminal has no transmit queue: while `active`,
/// the ioctl() below answers for that of a driver.
struct TransmitQueue {
    struct Call {
        unsigned long request;
        int queued; ///< bytes that had not left at the time of the call
    };

    [[nodiscard]] int queued() const
    {
        const std::chrono::duration<double> passed = Clock::now() - since;
        return std::max(0, bytes - static_cast<int>(passed.count() * bytesPerSecond));
    }

    bool active = false;
    int bytes = 0;
    int bytesPerSecond = 0;
    Clock::time_point since = Clock::now();
    std::vector<Call> calls = {};
    int waits = 0; ///< for room
};

TransmitQueue queue;

} // namespace

extern "C" int ioctl(int descriptor, unsigned long request, ...) noexcept
{
    va_list arguments;
    va_start(arguments, request);
    void* argument = va_arg(arguments, void*);
    va_end(arguments);
    if (queue.active && request == TIOCOUTQ) {
        *static_cast<int*>(argument) = queue.queued();
        return 0;
    }
    if (request == TCSBRK || request == TCSETS2 || request == TCFLSH || request == TIOCNXCL)
        queue.calls.push_back({request, queue.queued()});
    if (request == TCFLSH)
        queue.bytes = 0;
    return static_cast<int>(::syscall(SYS_ioctl, descriptor, request, argument));
}

extern "C" int ppoll(pollfd* lines, nfds_t count, const timespec* timeout, const sigset_t* mask)
{
    ++queue.waits;
    timespec left = *timeout; // the system call writes into it
    return static_cast<int>(::syscall(SYS_ppoll, lines, count, &left, mask, _NSIG / 8));
}

namespace fldc {
namespace {

class SerialControlTest : public testing::Test {
public:
    SerialControlTest() { nameDevice(far.path()); }
    ~SerialControlTest() override
    {
        queue = {};
        qunsetenv("RV4100_FLDC_PORTS");
    }

protected:
    /// Times that the program wakes up while it waits so long.
    int wakeUpsIn(std::chrono::milliseconds duration)
    {
        int wakeUps = 0;
        const auto* dispatcher = QAbstractEventDispatcher::instance();
        const auto counting = QObject::connect(dispatcher, &QAbstractEventDispatcher::awake,
                                               [&wakeUps] { ++wakeUps; });
        events.pause(duration);
        QObject::disconnect(counting);
        return wakeUps;
    }
    static void nameDevice(const QString& path)
    {
        qputenv("RV4100_FLDC_PORTS", "COM1=" + path.toLocal8Bit());
    }
    void open(const QString& settings = u"115200,n,8,1"_s)
    {
        control.setSettings(settings);
        control.setPortOpen(true);
    }
    QByteArray receive(qsizetype count)
    {
        QByteArray bytes;
        waitUntil([&] {
            while (bytes.size() < count && control.inBufferCount() > 0)
                bytes += control.input();
            return bytes.size() >= count;
        });
        return bytes;
    }

    PseudoTerminal far;
    SettingsFile noSettings{u"/nonexistent/settings"_s};
    PortListing ports{noSettings};
    QtEvents events;
    SerialControl control{ports, events};
};

const std::array<std::function<void(SerialControl&)>, 5> operations{
    [](SerialControl& line) { line.output("x"); },
    [](SerialControl& line) { static_cast<void>(line.input()); },
    [](SerialControl& line) { static_cast<void>(line.inBufferCount()); },
    [](SerialControl& line) { line.setInBufferCount(0); },
    [](SerialControl& line) { line.setSettings(u"9600,n,8,1"_s); },
};

TEST_F(SerialControlTest, FarEndSeesRawLineAtTheSpeedAskedFor)
{
    // Speed constant | CS8 060 | CREAD 0200 | CLOCAL 04000
    for (const auto& [speed, controlFlags] : {std::pair(9600U, 04275U),
                                              {19200U, 04276U},
                                              {57600U, 014261U},
                                              {115200U, 014262U},
                                              {250000U, 014260U}}) {
        const auto expectState = [&, speed = speed, flags = controlFlags] {
            const termios2 state = far.state();
            EXPECT_EQ(state.c_ospeed, speed);
            EXPECT_EQ(state.c_cflag, flags);
            EXPECT_EQ(state.c_iflag | state.c_oflag | state.c_lflag, 0U);
        };
        open(QString::number(speed) + u",n,8,1"_s);
        expectState();
        control.setPortOpen(false);
        expectState(); // nothing is restored
        open(u"38400,n,8,1"_s);
        control.setSettings(QString::number(speed) + u",n,8,1"_s);
        expectState();
        control.setPortOpen(false);
    }
}

TEST_F(SerialControlTest, BytesPassUnchangedWithoutEchoAndAreDiscarded)
{
    const FileDescriptor other = far.openNearEnd();
    open();
    const QByteArray awkward("\x00\x03\x04\r\n\x11\x13\x1a\x7f\xff\xaf", 11);
    far.write(awkward);
    EXPECT_EQ(receive(11), awkward);
    EXPECT_TRUE(control.input().isEmpty());
    control.output(awkward);
    control.output("end");
    EXPECT_EQ(far.read(14), awkward + "end");

    far.write("old");
    ASSERT_TRUE(waitUntil([this] { return control.inBufferCount() == 3; }));
    far.write("not yet taken over");
    for (int arrived = 0; arrived < 18;)
        ASSERT_EQ(::ioctl(other.get(), FIONREAD, &arrived), 0);
    control.setInBufferCount(0);
    EXPECT_EQ(control.inBufferCount(), 0);
    far.write("n");
    EXPECT_EQ(receive(1), "n");
}

TEST_F(SerialControlTest, IsExclusiveAlsoForRootAndThroughALink)
{
    const QTemporaryDir folder;
    const QString link = folder.filePath(u"radio"_s);
    ASSERT_TRUE(QFile::link(far.path(), link));
    const FileDescriptor other = far.openNearEnd();
    SerialControl second(ports, events);
    const auto expectBothFailWith = [&](int number, bool locked = true) {
        EXPECT_EQ(failureNumber([&] { second.setPortOpen(true); }), number);
        if (second.portOpen())
            second.setPortOpen(false);
        // An exclusive mode without a lock is seen by opening alone.
        EXPECT_EQ(ports.isAvailable(u"COM1:"_s), number == 0 || !locked);
    };
    open();
    nameDevice(link);
    expectBothFailWith(8005);
    int exclusive = 0; // the refused attempts must not have ended the first one's hold
    ASSERT_EQ(::ioctl(other.get(), TIOCGEXCL, &exclusive), 0);
    EXPECT_EQ(exclusive, 1);
    EXPECT_EQ(::flock(other.get(), LOCK_SH | LOCK_NB), -1);
    control.setPortOpen(false);
    expectBothFailWith(0);
    ASSERT_EQ(::flock(other.get(), LOCK_EX), 0);
    expectBothFailWith(8005);
    ASSERT_EQ(::flock(other.get(), LOCK_UN), 0);
    ASSERT_EQ(::ioctl(other.get(), TIOCEXCL, nullptr), 0);
    expectBothFailWith(8005, false);
}

TEST_F(SerialControlTest, FailsWithTheNumberOfTheCause)
{
    EXPECT_EQ(failureNumber([&] { control.setPortOpen(false); }), 8012);
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_EQ(failureNumber([&] { operations[i](control); }), 8018) << i;
    for (const char* settings : {"0,n,8,1", "-9600,n,8,1", ",n,8,1", "9600,e,7,1", "9600",
                                 "fast,n,8,1", "99999999999,n,8,1"})
        EXPECT_EQ(failureNumber([&] { control.setSettings(QString::fromLatin1(settings)); }), 5)
            << settings;
    EXPECT_EQ(control.settings(), u"9600,n,8,1"_s);
    open();
    EXPECT_EQ(failureNumber([&] { control.setPortOpen(true); }), 8005);
    EXPECT_EQ(failureNumber([&] { control.setCommPort(2); }), 8005);

    for (const auto& [path, number] : {std::pair(u""_s, 8002),
                                       {u"/dev/no-such-device"_s, 8002},
                                       {u"/tmp"_s, EISDIR},
                                       {u"/dev/null"_s, ENOTTY}}) {
        nameDevice(path);
        SerialControl other(ports, events);
        EXPECT_EQ(failureNumber([&] { other.setPortOpen(true); }), number) << qPrintable(path);
        EXPECT_FALSE(ports.isAvailable(u"COM1:"_s)) << qPrintable(path);
    }
}

// Renumbering while a radio is being written must not lead the next opening to another radio.
TEST_F(SerialControlTest, KeepsItsDeviceUntilTheNumberIsSetAgain)
{
    open();
    control.setPortOpen(false);
    const PseudoTerminal other;
    nameDevice(other.path());
    control.setPortOpen(true);
    control.output("a");
    EXPECT_EQ(far.read(1), "a");
    control.setPortOpen(false);
    control.setCommPort(1);
    control.setPortOpen(true);
    control.output("b");
    EXPECT_EQ(other.read(1), "b");
}

TEST_F(SerialControlTest, LargeWriteReachesASlowReaderWholeThroughSignals)
{
    open();
    QByteArray sent;
    for (int i = 0; i < 40'000; ++i)
        sent.append(static_cast<char>(i * 7 + i / 251));
    struct sigaction action {};
    struct sigaction previous {};
    action.sa_handler = [](int) {};
    ::sigaction(SIGALRM, &action, &previous);
    QByteArray arrived;
    std::thread reader([&] {
        sigset_t all{};
        sigfillset(&all);
        pthread_sigmask(SIG_BLOCK, &all, nullptr);
        while (arrived.size() < sent.size() && arrived.size() % 1000 == 0) {
            arrived += far.read(1000);
            std::this_thread::sleep_for(3ms);
        }
    });
    std::this_thread::sleep_for(5ms);
    const itimerval everyMillisecond{{0, 1000}, {0, 1000}};
    ::setitimer(ITIMER_REAL, &everyMillisecond, nullptr);
    EXPECT_EQ(failureNumber([&] { control.output(sent); }), 0);
    EXPECT_EQ(failureNumber([&] { control.setPortOpen(false); }), 0);
    const itimerval never{};
    ::setitimer(ITIMER_REAL, &never, nullptr);
    ::sigaction(SIGALRM, &previous, nullptr);
    reader.join();
    EXPECT_EQ(arrived, sent);
}

TEST_F(SerialControlTest, EverythingLeavesBeforeTheLineClosesOrChangesItsSpeed)
{
    const auto expectDrainedBefore = [](unsigned long request) {
        ASSERT_GE(queue.calls.size(), 2U);
        EXPECT_EQ(queue.calls[0].request, static_cast<unsigned long>(TCSBRK));
        EXPECT_EQ(queue.calls[0].queued, 0);
        EXPECT_EQ(queue.calls[1].request, request);
    };
    open(u"9600,n,8,1"_s);
    queue = {true, 96, 960};
    control.setSettings(u"19200,n,8,1"_s);
    expectDrainedBefore(TCSETS2);
    queue = {true, 96, 960};
    control.setPortOpen(false);
    expectDrainedBefore(TIOCNXCL);

    open();
    queue = {true, 1500, 11'520};
    control.output("x"); // the wait for its answer may begin when a frame's time is left
    EXPECT_LE(queue.queued(), 512);
}

TEST_F(SerialControlTest, AnAdapterThatTakesNothingMoreHoldsNothingUp)
{
    open(u"4000000,n,8,1"_s);
    EXPECT_EQ(failureNumber([&] { control.output(QByteArray(32'768, 'x')); }), ETIMEDOUT);
    EXPECT_LE(queue.waits, 20) << "waits grow; a spinning one would be thousands";
    far.write("k");
    EXPECT_EQ(receive(1), "k");

    control.setSettings(u"9600,n,8,1"_s); // 96 bytes need 100 ms
    queue = {true, 96, 0};
    EXPECT_EQ(failureNumber([&] { control.setPortOpen(false); }), ETIMEDOUT);
    EXPECT_FALSE(control.portOpen());
    EXPECT_LE(queue.waits, 20);
    // What is stuck is thrown away first: the system's own close would wait for it for 30 s.
    ASSERT_EQ(queue.calls.size(), 2U);
    EXPECT_EQ(queue.calls[0].request, static_cast<unsigned long>(TCFLSH));
    EXPECT_EQ(queue.calls[1].request, static_cast<unsigned long>(TIOCNXCL));
}

TEST_F(SerialControlTest, HangUpDeliversWhatCameThenFailsAndCostsNothing)
{
    open();
    far.write("123");
    ASSERT_TRUE(waitUntil([this] { return control.inBufferCount() == 3; }));
    far.hangUp();
    events.waitForEvents(); // nothing else is to come: only the hang-up can end this wait
    EXPECT_EQ(failureNumber([&] { control.output("x"); }), EIO);
    EXPECT_EQ(receive(3), "123");
    for (std::size_t i = 0; i < operations.size(); ++i)
        EXPECT_EQ(failureNumber([&] { operations[i](control); }), EIO) << i;
    EXPECT_LE(wakeUpsIn(200ms), 5);
    EXPECT_EQ(failureNumber([&] { control.setPortOpen(false); }), 0);
    EXPECT_FALSE(control.portOpen());
    EXPECT_EQ(failureNumber([&] { control.setPortOpen(true); }), 8002);
    // Each operation notices a hang-up by itself, before any event has been served.
    for (const auto& operation : operations) {
        PseudoTerminal terminal;
        nameDevice(terminal.path());
        SerialControl line(ports, events);
        line.setPortOpen(true);
        terminal.hangUp();
        EXPECT_EQ(failureNumber([&] { operation(line); }), EIO);
        EXPECT_EQ(failureNumber([&] { line.setPortOpen(false); }), 0);
    }
}

TEST_F(SerialControlTest, WaitingWakesNobodyAndEndsWithTheByte)
{
    open();
    QtTimers timers;
    timers.stop(timers.start(1ms, [] {}));
    EXPECT_LE(wakeUpsIn(500ms), 5);
    far.write("z");
    events.waitForEvents();
    EXPECT_EQ(control.inBufferCount(), 1);
    far.write("y"); // a byte that nobody takes must not keep waits from sleeping
    EXPECT_LE(wakeUpsIn(100ms), 5);
}

} // namespace
} // namespace fldc
