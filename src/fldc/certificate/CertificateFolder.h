#pragma once

#include "platform/qt/FileDescriptor.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <string>

namespace fldc::cli {

/// A folder for certificates. A file appears in it whole or not at all, and none is ever replaced.
/// Failures are PlatformFailure (errno numbers).
class CertificateFolder {
public:
    /// Makes the folder (the system's bytes) when it is missing, and tries to write a file into it.
    explicit CertificateFolder(const std::string& path);

    /// Writes a file named after @p time and @p about; returns its name. Where that is taken, the
    /// next free millisecond is used.
    QString write(const QByteArray& content, const QDateTime& time, const QString& about) const;

private:
    [[nodiscard]] QByteArray writeTemporary(const QByteArray& content) const;
    [[nodiscard]] bool give(const QByteArray& temporary, const QByteArray& name) const;
    [[noreturn]] void fail(int error) const;

    QString m_path;
    FileDescriptor m_folder;
};

/// "2026-11-23T05_30_00.123Z-UNIT_7.json": UTC; anything but letters, digits, ".", "_" and "-"
/// becomes "_", and what is longer than a file name may be is cut.
[[nodiscard]] QString certificateName(const QDateTime& time, const QString& about);

} // namespace fldc::cli
