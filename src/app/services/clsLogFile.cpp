#include "app/services/clsLogFile.h"

#include "app/services/LogState.h"
#include "platform/IClock.h"
#include "platform/IFileService.h"
#include "platform/IProgramInfo.h"
#include "platform/ShowError.h"

#include <utility>

namespace fldc {

namespace {

const QString rule(42, u'*');

QString twoDigits(int number)
{
    return QString::number(number).rightJustified(2, u'0');
}

QString versionText(const ProgramVersion& version)
{
    return QString::number(version.major) + u'.' + twoDigits(version.minor) + u'.' +
           twoDigits(version.revision);
}

QStringView prefixOf(LogEntryType type)
{
    switch (type) {
    case LogEntryType::Sent:
        return u" Sent     : ";
    case LogEntryType::Received:
        return u" Received : ";
    case LogEntryType::Note:
        break;
    }
    return {};
}

} // namespace

clsLogFile::clsLogFile(const Platform& platform) : m_platform(platform) {}

clsLogFile::~clsLogFile()
{
    if (LogFileOpen())
        writeFooterAndClose();
}

void clsLogFile::OpenLogFile(const QString& strComPort)
{
    if (!logState().enabled || LogFileOpen())
        return;
    m_givenUp = false;
    try {
        m_file = m_platform.files.openForAppending(m_fileName);
        writeLine(rule);
        writeLine(QStringLiteral("START LOG (") + dateTimeText(m_platform.clock.now()) + u')');
        writeLine(QStringLiteral("PROCESS ID (") + QString::number(m_platform.program.threadId()) +
                  u')');
        writeLine(QStringLiteral("COM PORT (") + strComPort + u')');
        writeLine(QStringLiteral("Download Component Version : ") +
                  versionText(m_platform.program.version()));
        writeLine({});
    } catch (...) {
        m_file.reset();
        ShowError(currentFailure());
    }
}

void clsLogFile::LogEntry(const QString& strEntry, LogEntryType eEntryType)
{
    if (!logState().enabled || !LogFileOpen())
        return;
    try {
        writeLine(dateTimeText(m_platform.clock.now()) + u' ' + prefixOf(eEntryType) + strEntry);
    } catch (...) {
        m_file.reset();
        m_givenUp = true;
        ShowError(currentFailure());
    }
}

void clsLogFile::CloseLogFile()
{
    if (!logState().enabled || std::exchange(m_givenUp, false))
        return;
    if (LogFileOpen())
        writeFooterAndClose();
    else
        ShowError(PlatformFailure(FailureNumber::ObjectNotSet,
                                  QStringLiteral("The log file is not open")));
}

// Touches nothing of the log behind the error box: who serves it may have released the log.
void clsLogFile::writeFooterAndClose()
{
    try {
        writeLine({});
        writeLine(QStringLiteral("END LOG (") + dateTimeText(m_platform.clock.now()) + u')');
        writeLine(rule);
        m_file->close();
        m_file.reset();
    } catch (...) {
        m_file.reset();
        ShowError(currentFailure());
    }
}

void clsLogFile::writeLine(const QString& line)
{
    m_file->write((line + QStringLiteral("\r\n")).toLatin1());
}

} // namespace fldc
