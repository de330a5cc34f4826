#pragma once

#include <QString>

namespace fldc {

struct Platform;

// Which files the logs are written to. Paths use "\" between folders.

struct LogPaths {
    QString download;
    QString configuration;
};

/// The first pair <n>_Download.log and <n>_Config.log in the folder of logs of which no other
/// instance holds a file; files of another day are moved aside. Throws PlatformFailure (overflow)
/// when no pair up to n = 32767 is usable.
[[nodiscard]] LogPaths chooseLogPaths(const Platform& platform);

/// True when the path can be used for a log. Never throws.
[[nodiscard]] bool CheckLogFile(const Platform& platform, const QString& strPath);

/// True when the file was last changed on another local date than today's. Throws PlatformFailure
/// when that can't be told.
[[nodiscard]] bool FileIsOld(const Platform& platform, const QString& strPath);

/// Moves the file to the same folder under its name with "old_" before it, replacing what stands
/// there. A client may name its file with the system's "/" as well. Throws PlatformFailure when
/// that fails.
void BackupOldLogFile(const Platform& platform, const QString& strPath);

} // namespace fldc
