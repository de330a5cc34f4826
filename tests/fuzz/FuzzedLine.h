#pragma once

#include "Fuzzing.h"
#include "support/VirtualPlatform.h"

namespace fldc {

using std::chrono::milliseconds;

/// A serial line whose radio does what the fuzzer says, command by command: it answers as it
/// should, with a fault, with the fuzzer's bytes, in pieces, late or never, or hangs up. Once the
/// fuzzer has no more to say it answers as it should.
class FuzzedLine final : public ScriptedLine {
public:
    struct Write {
        QByteArray bytes;
        QByteArray heard; ///< by the program, before its next write
        [[nodiscard]] int command() const { return bytes.size() < 4 ? 0 : bytes[0]; }
        [[nodiscard]] QByteArray data() const { return bytes.mid(2, bytes.size() - 4); }
        [[nodiscard]] bool refused() const
        {
            return heard.startsWith('\x80') || heard.startsWith('\x81');
        }
        /// Whether the radio has confirmed it: busy words and the done word, or with the done word
        /// behind a record or the one fault word that is none.
        [[nodiscard]] bool acknowledged() const
        {
            bool faults = false;
            for (qsizetype at = 0; at < heard.size() && !(at == 2 && faults); at += 2) {
                const QByteArray word = heard.mid(at, 2);
                if (word == "\x81\x0E" || QByteArray("CFIR").contains(word.left(1)))
                    return heard.contains("\xAF\xAF");
                if (word == "\xAF\xAF") // what follows is thrown away
                    return !faults;
                faults |= word != "\xAE\xAE";
            }
            return false;
        }
    };

    FuzzedLine(VirtualTime& time, FuzzedDataProvider& fuzz)
        : ScriptedLine(time), m_time(time), m_fuzz(fuzz)
    {
    }

    std::vector<Write> writes;
    milliseconds paused{0}; ///< all that the radio let the program wait
    bool faultless = false; ///< from now on
    void repair() { m_hungUp = m_dead = !(faultless = true); }

    [[nodiscard]] QByteArray input() override
    {
        const QByteArray byte = ScriptedLine::input();
        if (!writes.empty())
            writes.back().heard += byte;
        return byte;
    }

    /// Header, number of words, @p words, checksum.
    [[nodiscard]] static QByteArray record(char header, const QByteArray& words)
    {
        QByteArray bytes = header + QByteArray(1, static_cast<char>(words.size() / 2)) + words;
        unsigned sum = 0;
        for (qsizetype i = 0; i < bytes.size(); ++i)
            sum += static_cast<unsigned>(static_cast<unsigned char>(bytes[i]))
                   << (i % 2 == 0 ? 8U : 0U);
        return bytes + static_cast<char>(~sum >> 8U) + static_cast<char>(~sum);
    }

private:
    void expect(const QString& step) override
    {
        if (!step.startsWith(u'>'))
            return;
        writes.push_back({QByteArray::fromHex(step.mid(1).toLatin1()), {}});
        QByteArray answer = properAnswer(writes.back().bytes);
        int pieces = 1;
        if (!faultless && m_fuzz.remaining_bytes() > 0) {
            answer = faultyAnswer(answer, m_fuzz.ConsumeIntegralInRange(0, 20));
            pieces = m_fuzz.ConsumeBool() ? m_fuzz.ConsumeIntegralInRange(1, 20) : 1;
        }
        if (!m_dead)
            answerIn(pieces, answer);
    }
    [[nodiscard]] static QByteArray properAnswer(const QByteArray& bytes)
    {
        if (bytes == "\x5E" || bytes[0] == '\x36')
            return "\x76";
        if (bytes == "\x7E" || bytes == "<^#")
            return "RVKB1*?\xAF\xAF";
        if (bytes[0] == '\x31') // two components of the same hardware on two networks
            return record('C', QByteArray::fromHex("00520056004B0042003100000001000000000500")) +
                   record('C', QByteArray::fromHex("00520056004B0042003100000002000000000600")) +
                   "\xAF\xAF";
        if (bytes[0] == '\x3E') // two blocks of 64 KiB from 00010000
            return record('R', QByteArray::fromHex("00010001000001000001")) + "\xAF\xAF";
        if (bytes[0] == '\x37')
            return record('F', QByteArray::fromHex("0001000000020000")) + "\xAF\xAF";
        return "\xAF\xAF"; // also to each byte of a boot application, the last of which wants it
    }
    [[nodiscard]] QByteArray faultyAnswer(QByteArray proper, int kind)
    {
        const auto some = [this](std::size_t most) {
            return QByteArray::fromStdString(m_fuzz.ConsumeRandomLengthString(most));
        };
        switch (kind) {
        case 0:
            return {};
        case 1: // a fault word
            return QByteArray(1, m_fuzz.ConsumeBool() ? '\x81' : '\x80') +
                   static_cast<char>(m_fuzz.ConsumeIntegralInRange(0, 16)) + "\xAF\xAF";
        case 2:
            return some(200);
        case 3:
            return QByteArray("\xAE\xAE").repeated(m_fuzz.ConsumeIntegralInRange(1, 60)) + proper;
        case 4: // one byte is another
            proper[m_fuzz.ConsumeIntegralInRange<qsizetype>(0, proper.size() - 1)] =
                m_fuzz.ConsumeIntegral<char>();
            return proper;
        case 5:
            return some(8) + proper;
        case 6: // right records with any words
            for (proper.clear(); m_fuzz.ConsumeBool(); proper += some(4)) {
                const QByteArray words = some(60);
                proper += record("CFRI"[m_fuzz.ConsumeIntegralInRange(0, 3)],
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
    void answerIn(int pieces, const QByteArray& bytes)
    {
        milliseconds at(bytes.size() <= 2 ? 30 : 1); // behind a change of speed
        const qsizetype size = std::max<qsizetype>(1, bytes.size() / pieces);
        for (qsizetype i = 0; i < bytes.size(); i += size) {
            at += milliseconds(pieces > 1 ? m_fuzz.ConsumeIntegralInRange(0, 70'000) : 0);
            m_time.after(at, [this, part = bytes.mid(i, size), repaired = faultless] {
                if (portOpen() && repaired == faultless)
                    say(part);
            });
        }
        paused += at;
    }

    VirtualTime& m_time;
    FuzzedDataProvider& m_fuzz;
    bool m_dead = false;
};

/// A machine in memory at the end of such a line.
struct FuzzedMachine {
    explicit FuzzedMachine(FuzzedDataProvider& fuzz)
        : line(std::make_shared<FuzzedLine>(machine.time, fuzz))
    {
        machine.lines.line = line;
    }

    VirtualPlatform machine;
    std::shared_ptr<FuzzedLine> line;
    AnyMessages messages;
    ErrorBoxScope errorBox{messages};
    Platform platform{machine.time,  machine.time,     machine.time,
                      machine.files, machine.settings, machine.ports,
                      machine.lines, machine.program,  messages};
};

} // namespace fldc
