#pragma once

#include "app/services/clsLogFile.h"

#include <QByteArray>
#include <QString>

#include <memory>

namespace fldc {

/// The logs of this thread; made by the manager, null before and after.
struct LogState {
    bool enabled = false;
    std::shared_ptr<clsLogFile> download;
    std::shared_ptr<clsLogFile> configuration;
};

[[nodiscard]] LogState& logState();

/// A note in the download log.
void logDownload(const QString& text);
/// Bytes in the download log; made into text only when they are written.
void logBytes(LogEntryType type, const QByteArray& bytes);
/// Hex text in the download log.
void logHexText(LogEntryType type, const QString& hexText);
/// A note in the configuration log.
void logConfiguration(const QString& text);

} // namespace fldc
