#include "support/MemoryFiles.h"

#include "platform/PlatformFailure.h"

#include <cerrno>
#include <utility>

namespace fldc {

namespace {

class MemoryContent final : public IFileContent {
public:
    explicit MemoryContent(QByteArray content) : m_content(std::move(content)) {}
    [[nodiscard]] std::span<const std::uint8_t> bytes() const override
    {
        return {reinterpret_cast<const std::uint8_t*>(m_content.constData()),
                static_cast<std::size_t>(m_content.size())};
    }

private:
    QByteArray m_content;
};

} // namespace

/// A file that is being written; @p holder: it counts as in use meanwhile.
class MemoryFiles::Output final : public IOutputFile {
public:
    Output(MemoryFiles& files, const QString& path, bool holder)
        : m_files(files), m_path(path), m_holder(holder)
    {
        m_files.files[path].changed = m_files.m_clock.now().date();
        if (m_holder)
            m_files.inUse.insert(path);
    }
    ~Output() override { release(); }
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;
    void write(const QByteArray& bytes) override
    {
        if (m_files.unwritable.contains(m_path))
            throw PlatformFailure(ENOSPC, QStringLiteral("disk full"));
        File& file = m_files.files[m_path];
        file.content += bytes;
        file.changed = m_files.m_clock.now().date();
    }
    void close() override { release(); }

private:
    void release()
    {
        if (std::exchange(m_holder, false))
            m_files.inUse.erase(m_path);
    }

    MemoryFiles& m_files;
    QString m_path;
    bool m_holder;
};

MemoryFiles::File& MemoryFiles::existing(const QString& path)
{
    const auto found = files.find(path);
    if (found == files.end())
        throw PlatformFailure::fromErrno(ENOENT, path);
    return found->second;
}

void MemoryFiles::checkPermitted(const QString& path) const
{
    if (unwritable.contains(path))
        throw PlatformFailure(EACCES, QStringLiteral("not permitted"));
}

std::unique_ptr<IOutputFile> MemoryFiles::openForAppending(const QString& path)
{
    checkWritable(path);
    return std::make_unique<Output>(*this, path, true);
}

std::unique_ptr<IOutputFile> MemoryFiles::openForWriting(const QString& path)
{
    checkPermitted(path);
    files[path].content.clear();
    return std::make_unique<Output>(*this, path, false);
}

void MemoryFiles::checkWritable(const QString& path)
{
    checkPermitted(path);
    if (inUse.contains(path))
        throw PlatformFailure(EWOULDBLOCK, QStringLiteral("in use"));
}

std::unique_ptr<IFileContent> MemoryFiles::read(const QString& path)
{
    return std::make_unique<MemoryContent>(existing(path).content);
}

QDate MemoryFiles::lastModified(const QString& path)
{
    return existing(path).changed;
}

void MemoryFiles::copy(const QString& from, const QString& to)
{
    checkPermitted(to);
    files[to] = existing(from);
}

void MemoryFiles::remove(const QString& path)
{
    checkPermitted(path);
    (void)existing(path);
    files.erase(path);
}

} // namespace fldc
