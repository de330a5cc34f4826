#pragma once

#include "platform/Platform.h"

#include <QString>

#include <cstdint>
#include <memory>

namespace fldc {

class IOutputFile;

/// Kinds of log lines.
enum class LogEntryType : std::int32_t {
    Note = 0,
    Sent = 1,     ///< bytes written to the port, as hex text
    Received = 2, ///< bytes read from the port, as hex text
};

/// A text log: a header when it is opened, time-stamped lines, a footer when it is closed; always
/// appended to its file. Does nothing while logging is disabled. A failure of the file is shown in
/// the error box and the caller goes on.
///
/// Latin-1, "?" for characters that it has not; lines end with CR LF.
class clsLogFile {
public:
    explicit clsLogFile(const Platform& platform);
    /// An open log gets its footer.
    ~clsLogFile();
    clsLogFile(const clsLogFile&) = delete;
    clsLogFile& operator=(const clsLogFile&) = delete;

    void setFileName(const QString& strFileName) { m_fileName = strFileName; }
    [[nodiscard]] bool LogFileOpen() const { return m_file != nullptr; }

    /// Nothing when the log is open already.
    void OpenLogFile(const QString& strComPort);
    /// One line; nothing when the log is closed. A log that can't be written is given up: its
    /// failure is shown once and it is closed.
    void LogEntry(const QString& strEntry, LogEntryType eEntryType);
    /// Closing a log that is not open is a failure, unless it was given up.
    void CloseLogFile();

private:
    void writeFooterAndClose();
    void writeLine(const QString& line);

    Platform m_platform;
    QString m_fileName;
    std::unique_ptr<IOutputFile> m_file;
    bool m_givenUp = false; ///< a failed write closed it, and that has been shown
};

} // namespace fldc
