#pragma once

#include "platform/IFileService.h"

namespace fldc {

/// The files of this machine. "In use" is an advisory lock (flock) that openForAppending() holds
/// until the file is closed; a file system without locks counts every file as free. What is read or
/// written is a regular file: a named pipe or a device in its place is refused at once (EINVAL).
class FileService final : public IFileService {
public:
    [[nodiscard]] bool exists(const QString& path) override;
    [[nodiscard]] std::unique_ptr<IOutputFile> openForAppending(const QString& path) override;
    [[nodiscard]] std::unique_ptr<IOutputFile> openForWriting(const QString& path) override;
    void checkWritable(const QString& path) override;
    /// Into memory, and not mapped: another program may cut the file short meanwhile.
    [[nodiscard]] std::unique_ptr<IFileContent> read(const QString& path) override;
    [[nodiscard]] std::unique_ptr<IFileContent>
    readInPieces(const QString& path, const std::function<bool()>& goesOn) override;
    [[nodiscard]] QByteArray readPart(const QString& path, qint64 from, qint64 size) override;
    /// Like read() for a file by its name as the system has it, byte for byte: neither need that be
    /// text, nor does `\` in it stand for anything else. @p path names it in failures.
    [[nodiscard]] static std::unique_ptr<IFileContent> readNative(const QByteArray& name,
                                                                  const QString& path);
    [[nodiscard]] QDate lastModified(const QString& path) override;
    /// Replaces @p to when it exists.
    void copy(const QString& from, const QString& to) override;
    void remove(const QString& path) override;
};

} // namespace fldc
