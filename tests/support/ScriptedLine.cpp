#include "support/ScriptedLine.h"

#include "platform/PlatformFailure.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace fldc {

namespace {

[[noreturn]] void fail(int number)
{
    throw PlatformFailure(number, QStringLiteral("scripted failure"));
}

[[noreturn]] void fail(SerialFailure failure)
{
    fail(static_cast<int>(failure));
}

QString spaced(const QByteArray& bytes)
{
    return QString::fromLatin1(bytes.toHex(' ').toUpper());
}

QByteArray unspaced(QString digits)
{
    return QByteArray::fromHex(digits.remove(u' ').toLatin1());
}

bool matches(const QString& scripted, const QString& actual)
{
    return scripted.endsWith(QStringLiteral("..")) ? actual.startsWith(scripted.chopped(2))
                                                   : actual == scripted;
}

} // namespace

void ScriptedLine::play(const QString& script)
{
    const bool atRest = m_script.empty();
    for (const QString& line : script.split(u'\n')) {
        if (!line.trimmed().isEmpty())
            m_script.push_back(line.simplified());
    }
    if (atRest)
        takeAnswers();
}

void ScriptedLine::split(int bytes, std::chrono::milliseconds gap)
{
    m_splitBytes = bytes;
    m_splitGap = gap;
}

QString ScriptedLine::rest() const
{
    return QStringList(m_script.begin(), m_script.end()).join(u'\n');
}

void ScriptedLine::expect(const QString& step)
{
    if (m_script.empty() || !matches(m_script.front(), step)) {
        ADD_FAILURE() << "the program does " << qPrintable(step) << "\nthe script has "
                      << (m_script.empty() ? "ended" : qPrintable(m_script.front()));
        return;
    }
    m_script.pop_front();
    takeAnswers();
}

// Schedules what the radio says and does before the program's next step.
void ScriptedLine::takeAnswers()
{
    std::chrono::milliseconds at{0};
    while (!m_script.empty() &&
           (m_script.front().startsWith(u'<') || m_script.front() == u"! hangup")) {
        const QString step = m_script.front();
        m_script.pop_front();
        if (step == u"! hangup") {
            m_time.after(at + std::chrono::milliseconds(1), [this] { hangUp(); });
            continue;
        }
        const qsizetype blank = step.indexOf(u' ');
        const int delay = QStringView(step).mid(1, blank - 1).toInt();
        at += std::chrono::milliseconds(delay == 0 ? 1 : delay);
        const QByteArray bytes = unspaced(step.mid(blank));
        const qsizetype piece = m_splitBytes == 0 ? bytes.size() : m_splitBytes;
        for (qsizetype i = 0; i < bytes.size(); i += piece) {
            m_time.after(at, [this, part = bytes.mid(i, piece), speed = m_settings] {
                arrive(part, speed);
            });
            at += m_splitGap;
        }
    }
}

void ScriptedLine::arrive(const QByteArray& bytes, const QString& spokenAt)
{
    if (m_open && m_settings == spokenAt)
        m_received += bytes;
}

void ScriptedLine::failIfScripted(const QString& operation)
{
    const QString prefix = QStringLiteral("! ") + operation + u' ';
    if (m_script.empty() || !m_script.front().startsWith(prefix))
        return;
    const int number = m_script.front().mid(prefix.size()).toInt();
    m_script.pop_front();
    fail(number);
}

void ScriptedLine::checkUsable() const
{
    if (!m_open)
        fail(SerialFailure::OnlyWhilePortOpen);
    if (m_hungUp)
        fail(EIO);
}

void ScriptedLine::setPortOpen(bool open)
{
    if (!open && !m_open)
        fail(SerialFailure::DeviceNotOpen);
    if (!open) {
        failIfScripted(QStringLiteral("close"));
        m_open = false;
        m_received.clear();
        return;
    }
    if (m_open)
        fail(SerialFailure::PortAlreadyOpen);
    failIfScripted(QStringLiteral("open"));
    if (m_hungUp)
        fail(SerialFailure::InvalidPortNumber);
    m_open = true;
    expect(QStringLiteral("@ ") + m_settings.section(u',', 0, 0));
}

void ScriptedLine::setInputMode(int mode)
{
    EXPECT_EQ(mode, 1);
}

void ScriptedLine::setInputLen(int bytes)
{
    EXPECT_EQ(bytes, 1);
}

int ScriptedLine::inBufferCount()
{
    if (m_received.isEmpty())
        checkUsable();
    return static_cast<int>(m_received.size());
}

void ScriptedLine::setInBufferCount(int count)
{
    EXPECT_EQ(count, 0);
    checkUsable();
    m_received.clear();
}

QByteArray ScriptedLine::input()
{
    const QByteArray byte = m_received.left(1);
    m_received.remove(0, 1);
    return byte;
}

void ScriptedLine::output(const QByteArray& bytes)
{
    checkUsable();
    failIfScripted(QStringLiteral("write"));
    expect(QStringLiteral("> ") + spaced(bytes));
}

} // namespace fldc
