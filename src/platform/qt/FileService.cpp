#include "platform/qt/FileService.h"

#include "platform/PlatformFailure.h"
#include "platform/qt/FileDescriptor.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

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

FileDescriptor openFile(const QString& path, int flags)
{
    const QByteArray name = QFile::encodeName(nativePath(path));
    FileDescriptor file(
        uninterrupted([&] { return ::open(name.constData(), flags | O_CLOEXEC, 0666); }));
    if (!file.valid())
        throw PlatformFailure::fromErrno(errno, path);
    return file;
}

/// Throws when another holds the lock. A file system without locks is no reason to fail.
void holdAsInUse(const FileDescriptor& file, const QString& path)
{
    if (uninterrupted([&] { return ::flock(file.get(), LOCK_EX | LOCK_NB); }) == -1 &&
        errno == EWOULDBLOCK)
        throw PlatformFailure(EWOULDBLOCK, path + QStringLiteral(": in use by another program"));
}

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

class FileContent final : public IFileContent {
public:
    FileContent(FileDescriptor file, const QString& path) : m_descriptor(std::move(file))
    {
        // Not buffered: QFile's own buffer would only copy what is mapped or read in one piece.
        if (!m_file.open(m_descriptor.get(), QIODevice::ReadOnly | QIODevice::Unbuffered))
            throw PlatformFailure(EIO, path + QStringLiteral(": ") + m_file.errorString());
        const qint64 size = m_file.size();
        const uchar* mapped = size > 0 ? m_file.map(0, size) : nullptr;
        if (mapped != nullptr) {
            m_bytes = {mapped, static_cast<std::size_t>(size)};
            return;
        }
        m_read = m_file.readAll();
        if (m_file.error() != QFileDevice::NoError)
            throw PlatformFailure(EIO, path + QStringLiteral(": ") + m_file.errorString());
        m_bytes = {reinterpret_cast<const std::uint8_t*>(m_read.constData()),
                   static_cast<std::size_t>(m_read.size())};
    }

    [[nodiscard]] std::span<const std::uint8_t> bytes() const override { return m_bytes; }

private:
    FileDescriptor m_descriptor;
    QFile m_file;
    QByteArray m_read;
    std::span<const std::uint8_t> m_bytes;
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
    // Not blocking, so that a named pipe without a writer is refused instead of waited for.
    FileDescriptor file = openFile(path, O_RDONLY | O_NONBLOCK);
    struct stat status {};
    if (::fstat(file.get(), &status) == -1)
        throw PlatformFailure::fromErrno(errno, path);
    if (S_ISDIR(status.st_mode))
        throw PlatformFailure::fromErrno(EISDIR, path);
    if (!S_ISREG(status.st_mode))
        throw PlatformFailure(EINVAL, path + QStringLiteral(": not a regular file"));
    return std::make_unique<FileContent>(std::move(file), path);
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
