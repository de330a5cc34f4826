#pragma once

#include "Fuzzing.h"
#include "platform/ISerialControl.h"
#include "platform/PlatformFailure.h"
#include "support/VirtualPlatform.h"

#include <cerrno>

namespace fldc {

/// A serial line whose radio does what the fuzzer says, command by command: it answers as it
/// should, with a fault, with the fuzzer's bytes, in pieces, late or never, or hangs up. Once the
/// fuzzer has no more to say it answers as it should.
class FuzzedLine final : public ISerialControl {
public:
    struct Write {
        QByteArray bytes;
        QByteArray heard; ///< by the program, before its next write
        [[nodiscard]] int command() const { return bytes.size() < 4 ? 0 : bytes[0]; }
        [[nodiscard]] QByteArray data() const { return bytes.mid(2, bytes.size() - 4); }
        [[nodiscard]] bool refused() const { return heard[0] == '\x80' || heard[0] == '\x81'; }
        /// Whether the radio has confirmed it, with the accepted oddities: 81 0E is no fault.
        [[nodiscard]] bool acknowledged() const;
    };

    FuzzedLine(VirtualTime& time, FuzzedDataProvider& fuzz) : m_time(time), m_fuzz(fuzz) {}

    std::vector<Write> writes;
    VirtualTime::milliseconds paused{0}; ///< all that the radio let the program wait
    bool faultless = false;              ///< from now on
    void repair() { m_hungUp = m_dead = !(faultless = true); }

    [[nodiscard]] int commPort() const override { return 1; }
    void setCommPort(int /*number*/) override {}
    [[nodiscard]] bool portOpen() const override { return m_open; }
    void setPortOpen(bool open) override;
    [[nodiscard]] QString settings() const override { return m_settings; }
    void setSettings(const QString& settings) override { m_settings = settings; }
    void setInputMode(int /*mode*/) override {}
    void setInputLen(int /*bytes*/) override {}
    [[nodiscard]] int inBufferCount() override;
    void setInBufferCount(int count) override;
    [[nodiscard]] QByteArray input() override;
    void output(const QByteArray& bytes) override;

    /// Header, number of words, @p words, checksum.
    [[nodiscard]] static QByteArray record(char header, const QByteArray& words);

private:
    [[nodiscard]] QByteArray properAnswer(const QByteArray& bytes) const;
    [[nodiscard]] QByteArray faultyAnswer(QByteArray proper, int kind);
    void say(const QByteArray& bytes, int pieces);
    void checkUsable() const;

    VirtualTime& m_time;
    FuzzedDataProvider& m_fuzz;
    bool m_open = false;
    bool m_hungUp = false;
    bool m_dead = false;
    QString m_settings = QStringLiteral("9600,n,8,1");
    QByteArray m_received;
};

/// Always the same line.
struct FuzzedLines final : ISerialControlFactory {
    FuzzedLines(VirtualTime& time, FuzzedDataProvider& fuzz)
        : line(std::make_shared<FuzzedLine>(time, fuzz))
    {
    }
    [[nodiscard]] std::shared_ptr<ISerialControl> create() override { return line; }
    std::shared_ptr<FuzzedLine> line;
};

/// A machine in memory at the end of such a line.
struct FuzzedMachine {
    explicit FuzzedMachine(FuzzedDataProvider& fuzz) : lines(machine.time, fuzz) {}
    VirtualPlatform machine;
    FuzzedLines lines;
    AnyMessages messages;
    ErrorBoxScope errorBox{messages};
    Platform platform{machine.time,  machine.time,     machine.time,
                      machine.files, machine.settings, machine.ports,
                      lines,         machine.program,  messages};
};

} // namespace fldc
