#include "platform/qt/FileService.h"

#include "platform/PlatformFailure.h"
#include "platform/qt/FileDescriptor.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace fldc {

namespace {

/// The system's form of a path that may have `\` between its folders.
QString nativePath(const QString& path)
{
    return QString(path).replace(u'\\', u'/');
}

void throwUnlessRegular(const struct stat& status, const QString& path)
{
    if (S_ISDIR(status.st_mode))
        throw PlatformFailure::fromErrno(EISDIR, path);
    if (!S_ISREG(status.st_mode))
        throw PlatformFailure(EINVAL, path + QStringLiteral(": not a regular file"));
}

/// Opens a regular file. It is looked at before, because opening alone can do something to a
/// device, and afterwards, because another may stand in its place by then; a named pipe can't hold
/// up the opening.
FileDescriptor openNamed(const QByteArray& name, const QString& path, int flags)
{
    struct stat status {};
    if (::stat(name.constData(), &status) == 0)
        throwUnlessRegular(status, path);
    FileDescriptor file(uninterrupted(
        [&] { return ::open(name.constData(), flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, 0666); }));
    if (!file.valid() || ::fstat(file.get(), &status) == -1)
        throw PlatformFailure::fromErrno(errno, path);
    throwUnlessRegular(status, path);
    return file;
}

FileDescriptor openFile(const QString& path, int flags)
{
    return openNamed(QFile::encodeName(nativePath(path)), path, flags);
}

/// Throws when another holds the lock. A file system without locks is no reason to fail.
void holdAsInUse(const FileDescriptor& file, const QString& path)
{
    if (uninterrupted([&] { return ::flock(file.get(), LOCK_EX | LOCK_NB); }) == -1 &&
        errno == EWOULDBLOCK)
        throw PlatformFailure(EWOULDBLOCK, path + QStringLiteral(": in use by another program"));
}

// Some milliseconds of reading, also from a slow disk.
constexpr qint64 pieceSize = qint64{1} * 1024 * 1024;

class OutputFile final : public IOutputFile {
public:
    OutputFile(FileDescriptor file, QString path) : m_file(std::move(file)), m_path(std::move(path))
    {
    }

    void write(const QByteArray& bytes) override
    {
        throwIfFailed(writeAll(m_file.get(), {bytes.constData(), std::size_t(bytes.size())}));
    }
    void close() override { throwIfFailed(m_file.close()); }

private:
    void throwIfFailed(int error) const
    {
        if (error != 0)
            throw PlatformFailure::fromErrno(error, m_path);
    }

    FileDescriptor m_file;
    QString m_path;
};

/// The bytes that the file had when it was opened, or fewer when it is cut short while it is read.
class FileContent final : public IFileContent {
public:
    FileContent(FileDescriptor descriptor, const QString& path,
                const std::function<bool()>& goesOn = {})
    {
        QFile file;
        // Not buffered: QFile's own buffer would only copy what is read in one piece.
        if (!file.open(descriptor.get(), QIODevice::ReadOnly | QIODevice::Unbuffered))
            throw PlatformFailure(EIO, path + QStringLiteral(": ") + file.errorString());
        m_bytes.reserve(file.size() + pieceSize);
        for (qint64 got = pieceSize; got > 0 && (!goesOn || goesOn());) {
            const qsizetype at = m_bytes.size();
            m_bytes.resize(at + pieceSize);
            got = file.read(m_bytes.data() + at, pieceSize);
            m_bytes.truncate(at + std::max<qint64>(got, 0));
        }
        if (file.error() != QFileDevice::NoError)
            throw PlatformFailure(EIO, path + QStringLiteral(": ") + file.errorString());
    }

    [[nodiscard]] std::span<const std::uint8_t> bytes() const override
    {
        return {reinterpret_cast<const std::uint8_t*>(m_bytes.constData()),
                static_cast<std::size_t>(m_bytes.size())};
    }

private:
    QByteArray m_bytes;
};

} // namespace

bool FileService::exists(const QString& path)
{
    const QFileInfo info(nativePath(path));
    return info.exists() && !info.isDir();
}

std::unique_ptr<IOutputFile> FileService::openForAppending(const QString& path)
{
    FileDescriptor file = openFile(path, O_WRONLY | O_CREAT | O_APPEND);
    holdAsInUse(file, path);
    return std::make_unique<OutputFile>(std::move(file), path);
}

std::unique_ptr<IOutputFile> FileService::openForWriting(const QString& path)
{
    return std::make_unique<OutputFile>(openFile(path, O_WRONLY | O_CREAT | O_TRUNC), path);
}

void FileService::checkWritable(const QString& path)
{
    holdAsInUse(openFile(path, O_WRONLY), path);
}

std::unique_ptr<IFileContent> FileService::read(const QString& path)
{
    return std::make_unique<FileContent>(openFile(path, O_RDONLY), path);
}

std::unique_ptr<IFileContent> FileService::readInPieces(const QString& path,
                                                        const std::function<bool()>& goesOn)
{
    return std::make_unique<FileContent>(openFile(path, O_RDONLY), path, goesOn);
}

QByteArray FileService::readPart(const QString& path, qint64 from, qint64 size)
{
    QFile file;
    const FileDescriptor descriptor = openFile(path, O_RDONLY);
    const bool there =
        file.open(descriptor.get(), QIODevice::ReadOnly | QIODevice::Unbuffered) && file.seek(from);
    const QByteArray part = there ? file.read(size) : QByteArray();
    if (file.error() != QFileDevice::NoError)
        throw PlatformFailure(EIO, path + QStringLiteral(": ") + file.errorString());
    return part;
}

std::unique_ptr<IFileContent> FileService::readNative(const QByteArray& name, const QString& path)
{
    return std::make_unique<FileContent>(openNamed(name, path, O_RDONLY), path);
}

QDate FileService::lastModified(const QString& path)
{
    const QFileInfo info(nativePath(path));
    if (!info.exists())
        throw PlatformFailure::fromErrno(ENOENT, path);
    return info.lastModified().toLocalTime().date();
}

void FileService::copy(const QString& from, const QString& to)
{
    std::error_code error;
    std::filesystem::copy_file(QFile::encodeName(nativePath(from)).toStdString(),
                               QFile::encodeName(nativePath(to)).toStdString(),
                               std::filesystem::copy_options::overwrite_existing, error);
    if (error)
        throw PlatformFailure::fromErrno(error.value(), from + QStringLiteral(" to ") + to);
}

void FileService::remove(const QString& path)
{
    if (::unlink(QFile::encodeName(nativePath(path)).constData()) == -1)
        throw PlatformFailure::fromErrno(errno, path);
}

} // namespace fldc
