#pragma once

#include "platform/ISerialControl.h"
#include "support/VirtualTime.h"

#include <QStringList>

#include <deque>

namespace fldc {

/// A serial line with a radio at its end that follows a script, line by line:
///
///     @ 19200          the line is opened at this speed
///     > 38 00 C7 FF    the program writes these bytes ("> 35.." any bytes that begin so)
///     < AF AF          the radio answers, 1 ms later
///     <500 AF AF       the radio says this 500 ms after what it said before
///     ! hangup         the line hangs up
///     ! open 8002      the next opening fails with this number; likewise "! write 5", "! close 5"
///
/// A script may begin with what the radio says. A write or an opening that the script does not have
/// next fails the test. The radio speaks at the speed that the line has when it is made to; what
/// arrives while the line is closed, or has another speed by then, is lost.
class ScriptedLine : public ISerialControl {
public:
    explicit ScriptedLine(VirtualTime& time) : m_time(time) {}

    void play(const QString& script);
    void play(const char* script) { play(QString::fromLatin1(script)); }
    /// Answers come in pieces of @p bytes, @p gap apart.
    void split(int bytes, std::chrono::milliseconds gap);
    /// Whether the whole script has been played; what is left when not.
    [[nodiscard]] QString rest() const;
    /// The radio says this now, script or not.
    void say(const QByteArray& bytes) { m_received += bytes; }
    void hangUp() { m_hungUp = true; }

    [[nodiscard]] int commPort() const override { return m_commPort; }
    void setCommPort(int number) override { m_commPort = number; }
    [[nodiscard]] bool portOpen() const override { return m_open; }
    void setPortOpen(bool open) override;
    [[nodiscard]] QString settings() const override { return m_settings; }
    void setSettings(const QString& settings) override { m_settings = settings; }
    void setInputMode(int mode) override;
    void setInputLen(int bytes) override;
    [[nodiscard]] int inBufferCount() override;
    void setInBufferCount(int count) override;
    [[nodiscard]] QByteArray input() override;
    void output(const QByteArray& bytes) override;

protected:
    /// The program does this: "@ SPEED" or "> BYTES", as a script has it.
    virtual void expect(const QString& step);

    bool m_hungUp = false;

private:
    void takeAnswers();
    void arrive(const QByteArray& bytes, const QString& spokenAt);
    void failIfScripted(const QString& operation);
    void checkUsable() const;

    VirtualTime& m_time;
    std::deque<QString> m_script;
    int m_commPort = 1;
    bool m_open = false;
    QString m_settings = QStringLiteral("9600,n,8,1");
    QByteArray m_received;
    int m_splitBytes = 0;
    std::chrono::milliseconds m_splitGap{0};
};

/// Always the same line.
class ScriptedLines final : public ISerialControlFactory {
public:
    explicit ScriptedLines(VirtualTime& time) : line(std::make_shared<ScriptedLine>(time)) {}
    [[nodiscard]] std::shared_ptr<ISerialControl> create() override { return line; }

    std::shared_ptr<ScriptedLine> line;
};

} // namespace fldc
