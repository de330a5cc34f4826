#include "app/services/LogState.h"

#include "shared/HexText.h"

namespace fldc {

namespace {

void write(const std::shared_ptr<clsLogFile>& log, const QString& text, LogEntryType type)
{
    if (log)
        log->LogEntry(text, type);
}

} // namespace

LogState& logState()
{
    thread_local LogState state;
    return state;
}

void logDownload(const QString& text)
{
    write(logState().download, text, LogEntryType::Note);
}

void logBytes(LogEntryType type, const QByteArray& bytes)
{
    const LogState& state = logState();
    if (state.enabled && state.download && state.download->LogFileOpen())
        write(state.download, bytesToHex(bytes), type);
}

void logHexText(LogEntryType type, const QString& hexText)
{
    write(logState().download, hexText, type);
}

void logConfiguration(const QString& text)
{
    write(logState().configuration, text, LogEntryType::Note);
}

} // namespace fldc
