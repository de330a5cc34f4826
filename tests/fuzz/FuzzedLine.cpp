#include "FuzzedLine.h"

namespace fldc {

using std::chrono::milliseconds;

bool FuzzedLine::Write::acknowledged() const
{
    qsizetype at = 0;
    while (heard.mid(at, 2) == "\xAE\xAE")
        at += 2;
    const QByteArray first = heard.mid(at, 2);
    return first == "\xAF\xAF" ||
           (heard.endsWith("\xAF\xAF") && (first == "\x81\x0E" || QByteArray("CFIR").contains(first[0])));
}

QByteArray FuzzedLine::record(char header, const QByteArray& words)
{
    QByteArray bytes = header + QByteArray(1, static_cast<char>(words.size() / 2)) + words;
    unsigned sum = 0;
    for (qsizetype i = 0; i < bytes.size(); ++i)
        sum += static_cast<unsigned char>(bytes[i]) << (i % 2 == 0 ? 8U : 0U);
    return bytes + static_cast<char>(~sum >> 8U) + static_cast<char>(~sum);
}

QByteArray FuzzedLine::properAnswer(const QByteArray& bytes) const
{
    const QByteArray done("\xAF\xAF");
    if (bytes == "\x5E" || bytes[0] == '\x36')
        return "\x76";
    if (bytes == "\x7E" || bytes == "<^#")
        return "RVKB1*?" + done;
    if (bytes[0] == '\x31') // two components of the same hardware on two networks
        return record('C', QByteArray::fromHex("00520056004B0042003100000001000000000500")) +
               record('C', QByteArray::fromHex("00520056004B0042003100000002000000000600")) + done;
    if (bytes[0] == '\x3E') // two blocks of 64 KiB from 00010000
        return record('R', QByteArray::fromHex("00010001000001000001")) + done;
    if (bytes[0] == '\x37')
        return record('F', QByteArray::fromHex("0001000000020000")) + done;
    return done; // also to each byte of a boot application, the last of which wants it
}

QByteArray FuzzedLine::faultyAnswer(QByteArray proper, int kind)
{
    const auto bytes = [&](std::size_t most) {
        return QByteArray::fromStdString(m_fuzz.ConsumeRandomLengthString(most));
    };
    switch (kind) {
    case 0:
        return {};
    case 1: // a fault word
        return QByteArray(1, m_fuzz.ConsumeBool() ? '\x81' : '\x80') +
               static_cast<char>(m_fuzz.ConsumeIntegralInRange(0, 16)) + "\xAF\xAF";
    case 2:
        return bytes(200);
    case 3:
        return QByteArray("\xAE\xAE").repeated(m_fuzz.ConsumeIntegralInRange(1, 60)) + proper;
    case 4: // some bytes of it are others
        for (int i = m_fuzz.ConsumeIntegralInRange(1, 3); i > 0 && !proper.isEmpty(); --i)
            proper[m_fuzz.ConsumeIntegralInRange<qsizetype>(0, proper.size() - 1)] =
                m_fuzz.ConsumeIntegral<char>();
        return proper;
    case 5:
        return bytes(8) + proper;
    case 6: // right records with any words
        for (proper.clear(); m_fuzz.ConsumeBool(); proper += bytes(4)) {
            const QByteArray words = bytes(60);
            proper += record(m_fuzz.PickValueInArray({'C', 'F', 'R', 'I'}),
                             words.chopped(words.size() % 2));
        }
        return proper + "\xAF\xAF";
    case 7:
        m_dead = true;
        return {};
    case 8:
        m_time.after(milliseconds(m_fuzz.ConsumeIntegralInRange(0, 3000)),
                     [this] { m_hungUp = !faultless; });
        return proper;
    case 9: // a start-up byte that asks for the boot application
        return "V";
    default:
        return proper;
    }
}

void FuzzedLine::say(const QByteArray& bytes, int pieces)
{
    milliseconds at(bytes == "\xAF\xAF" || bytes == "\x76" ? 30 : 1); // behind a change of speed
    const qsizetype size = std::max<qsizetype>(1, bytes.size() / pieces);
    for (qsizetype i = 0; i < bytes.size(); i += size) {
        if (pieces > 1)
            at += milliseconds(m_fuzz.ConsumeIntegralInRange(0, 70'000));
        m_time.after(at, [this, part = bytes.mid(i, size)] {
            if (m_open)
                m_received += part;
        });
    }
    paused += at;
}

void FuzzedLine::output(const QByteArray& bytes)
{
    checkUsable();
    writes.push_back({bytes, {}});
    const QByteArray proper = properAnswer(bytes);
    if (faultless || m_fuzz.remaining_bytes() == 0)
        return m_dead ? void() : say(proper, 1);
    const QByteArray answer = faultyAnswer(proper, m_fuzz.ConsumeIntegralInRange(0, 20));
    if (!m_dead)
        say(answer, m_fuzz.ConsumeBool() ? m_fuzz.ConsumeIntegralInRange(1, 20) : 1);
}

void FuzzedLine::checkUsable() const
{
    if (!m_open)
        throw PlatformFailure(static_cast<int>(SerialFailure::OnlyWhilePortOpen), {});
    if (m_hungUp)
        throw PlatformFailure(EIO, {});
}

void FuzzedLine::setPortOpen(bool open)
{
    EXPECT_NE(open, m_open);
    if (open && m_hungUp)
        throw PlatformFailure(static_cast<int>(SerialFailure::InvalidPortNumber), {});
    m_open = open;
    m_received.clear();
}

int FuzzedLine::inBufferCount()
{
    if (m_received.isEmpty())
        checkUsable();
    return static_cast<int>(m_received.size());
}

void FuzzedLine::setInBufferCount(int count)
{
    EXPECT_EQ(count, 0);
    checkUsable();
    m_received.clear();
}

QByteArray FuzzedLine::input()
{
    const QByteArray byte = m_received.left(1);
    m_received.remove(0, 1);
    if (!writes.empty())
        writes.back().heard += byte;
    return byte;
}

} // namespace fldc
