// What the program costs on the line: the share of the wire's time that a download uses, the host's
// turnaround, and processor time while a radio is silent. Prints a table; the figures that it is
// compared with are measured in the same run.

#include "line/Peer.h"

#include "platform/qt/QtPlatform.h"
#include "platform/qt/TerminalMessages.h"
#include "port/Cancellation.h"
#include "port/clsSerial.h"
#include "protocol/wire/Frames.h"
#include "shared/LastError.h"

#include <QCoreApplication>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <unistd.h>

namespace fldc {
namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

double median(std::vector<double> values)
{
    std::ranges::nth_element(values,
                             values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2));
    return values[values.size() / 2];
}

double processorSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& t) {
        return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) * 1e-6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

/// One exchange of a frame of 514 bytes and an answer of 2.
using Exchange = std::function<void()>;

QByteArray dataFrame()
{
    return *buildFrame(Command::WriteFlashData, QByteArray(510, 'A'));
}

/// The floor: a loop around poll().
class BareLoop {
public:
    explicit BareLoop(const Peer& peer)
        : m_line(open(qPrintable(peer.path()), O_RDWR | O_NOCTTY | O_NONBLOCK)),
          m_frame(dataFrame())
    {
    }
    ~BareLoop() { close(m_line); }
    BareLoop(const BareLoop&) = delete;
    BareLoop& operator=(const BareLoop&) = delete;

    void exchange()
    {
        if (write(m_line, m_frame.constData(), static_cast<std::size_t>(m_frame.size())) !=
            m_frame.size())
            std::abort();
        for (int received = 0; received < 2;) {
            pollfd ready{m_line, POLLIN, 0};
            poll(&ready, 1, -1);
            char byte = 0;
            received += read(m_line, &byte, 1) == 1 ? 1 : 0;
        }
    }

private:
    int m_line;
    QByteArray m_frame;
};

/// The program's own port on a line to a peer.
class PortUnderTest {
public:
    explicit PortUnderTest(const Peer& peer)
    {
        qputenv("RV4100_FLDC_PORTS", "COM1=" + peer.path().toLocal8Bit());
        auto control = m_qt.platform().serialControls.create();
        control->setCommPort(1);
        m_port.setPortType(std::move(control));
        m_port.SetPortParameters(QStringLiteral("115200"), 1);
        if (!lastError().ok())
            std::abort();
    }
    void exchange()
    {
        m_port.WriteBinary(m_frame);
        if (m_port.ReadBinary(2000, QStringLiteral("AFAF"), nullptr) != u"AFAF")
            std::abort();
    }
    clsSerial& port() { return m_port; }

private:
    TerminalMessages m_messages;
    QtPlatform m_qt{m_messages};
    clsSerial m_port{m_qt.platform(), std::make_shared<Cancellation>()};
    QByteArray m_frame = dataFrame();
};

double timeOf(int count, const Exchange& exchange)
{
    const auto start = Clock::now();
    for (int i = 0; i < count; ++i)
        exchange();
    return secondsSince(start);
}

std::vector<double> eachTimeOf(int count, const Exchange& exchange)
{
    std::vector<double> times;
    times.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        times.push_back(timeOf(1, exchange));
    return times;
}

void measureWireUse()
{
    constexpr int frames = 200; // 102 kB of firmware
    constexpr double wire = frames * 516 * byteTime;
    const Peer peer(Peer::Pace::Line115200);
    std::vector<double> port;
    std::vector<double> bare;
    for (int series = 0; series < 3; ++series) {
        PortUnderTest host(peer);
        port.push_back(timeOf(frames, [&] { host.exchange(); }));
        host.port().ClosePort();
        BareLoop loop(peer);
        bare.push_back(timeOf(frames, [&] { loop.exchange(); }));
    }
    std::printf(
        "wire use at 115200, %d frames of 514 bytes     %6.2f %%   (bare poll loop %6.2f %%)\n",
        frames, 100 * wire / median(port), 100 * wire / median(bare));
}

void measureTurnaround()
{
    constexpr int exchanges = 3000;
    const Peer peer(Peer::Pace::AtOnce);
    std::vector<double> ratios;
    double port = 0;
    for (int series = 0; series < 5; ++series) {
        double own = 0;
        {
            PortUnderTest host(peer);
            own = median(eachTimeOf(exchanges, [&] { host.exchange(); }));
            host.port().ClosePort();
        }
        BareLoop loop(peer);
        ratios.push_back(own / median(eachTimeOf(exchanges, [&] { loop.exchange(); })));
        port = own;
    }
    std::printf(
        "round trip of 514 and 2 bytes, answered at once %6.1f us  (%.2f times a bare poll loop)\n",
        port * 1e6, median(ratios));
}

void measureSilence()
{
    constexpr double seconds = 10;
    const Peer peer(Peer::Pace::Silent);
    PortUnderTest host(peer);
    const double before = processorSeconds();
    (void)host.port().ReadBinary(static_cast<std::int16_t>(seconds * 1000), QStringLiteral("AFAF"),
                                 nullptr);
    std::printf("processor while a radio is silent for %.0f s       %6.4f %% of a core\n", seconds,
                100 * (processorSeconds() - before) / seconds);
}

} // namespace
} // namespace fldc

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    fldc::measureWireUse();
    fldc::measureTurnaround();
    fldc::measureSilence();
    return 0;
}
