#pragma once

#include <QByteArray>
#include <QDate>
#include <QString>

#include <cstdint>
#include <functional>
#include <memory>
#include <span>

namespace fldc {

/// A file open for writing. The destructor closes it.
class IOutputFile {
public:
    virtual ~IOutputFile() = default;
    /// Hands @p bytes to the system at once, so that nothing is lost when the program ends badly.
    virtual void write(const QByteArray& bytes) = 0;
    virtual void close() = 0;
};

/// The whole content of a file, kept readable as long as the object lives.
class IFileContent {
public:
    virtual ~IFileContent() = default;
    [[nodiscard]] virtual std::span<const std::uint8_t> bytes() const = 0;
};

/// Files by path. The component's own path texts use `\` between folders; this service turns it
/// into the system's separator, here and nowhere else. Members throw PlatformFailure (errno
/// numbers) unless they say otherwise.
class IFileService {
public:
    virtual ~IFileService() = default;

    /// True when the path names a file (not a folder); never throws.
    [[nodiscard]] virtual bool exists(const QString& path) = 0;
    /// Opens for appending, creating the file when absent, and holds it as in use.
    [[nodiscard]] virtual std::unique_ptr<IOutputFile> openForAppending(const QString& path) = 0;
    /// Creates the file or empties it.
    [[nodiscard]] virtual std::unique_ptr<IOutputFile> openForWriting(const QString& path) = 0;
    /// Throws when the existing file can't be written or another program holds it as in use.
    virtual void checkWritable(const QString& path) = 0;
    [[nodiscard]] virtual std::unique_ptr<IFileContent> read(const QString& path) = 0;
    /// The same in pieces of a few milliseconds, with a call of @p goesOn between them. What stands
    /// behind the piece after which that is false is left out.
    [[nodiscard]] virtual std::unique_ptr<IFileContent>
    readInPieces(const QString& path, const std::function<bool()>& /*goesOn*/)
    {
        return read(path);
    }
    /// At most @p size bytes from position @p from on, as the file has them now; empty at its end.
    [[nodiscard]] virtual QByteArray readPart(const QString& path, qint64 from, qint64 size)
    {
        const auto whole = read(path);
        return QByteArrayView(whole->bytes()).toByteArray().mid(from, size);
    }
    /// Local date of the last change.
    [[nodiscard]] virtual QDate lastModified(const QString& path) = 0;
    virtual void copy(const QString& from, const QString& to) = 0;
    virtual void remove(const QString& path) = 0;
};

} // namespace fldc
