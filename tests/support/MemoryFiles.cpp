#include "support/MemoryFiles.h"

#include "platform/PlatformFailure.h"

#include <cerrno>

namespace fldc {

namespace {

class MemoryOutput final : public IOutputFile {
public:
    MemoryOutput(MemoryFiles& files, const QString& path) : m_files(files), m_path(path)
    {
        m_files.inUse.insert(path);
    }
    ~MemoryOutput() override { m_files.inUse.erase(m_path); }
    MemoryOutput(const MemoryOutput&) = delete;
    MemoryOutput& operator=(const MemoryOutput&) = delete;
    void write(const QByteArray& bytes) override
    {
        if (m_files.unwritable.contains(m_path))
            throw PlatformFailure::fromErrno(ENOSPC, m_path);
        m_files.files[m_path].content += bytes;
    }
    void close() override {}

private:
    MemoryFiles& m_files;
    QString m_path;
};

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

MemoryFiles::File& MemoryFiles::existing(const QString& path)
{
    const auto found = files.find(path);
    if (found == files.end())
        throw PlatformFailure::fromErrno(ENOENT, path);
    return found->second;
}

std::unique_ptr<IOutputFile> MemoryFiles::openForAppending(const QString& path)
{
    if (unwritable.contains(path))
        throw PlatformFailure::fromErrno(EACCES, path);
    files.try_emplace(path);
    return std::make_unique<MemoryOutput>(*this, path);
}

std::unique_ptr<IOutputFile> MemoryFiles::openForWriting(const QString& path)
{
    auto file = openForAppending(path);
    files[path].content.clear();
    return file;
}

void MemoryFiles::checkWritable(const QString& path)
{
    if (unwritable.contains(path) || inUse.contains(path))
        throw PlatformFailure::fromErrno(EACCES, path);
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
    files[to] = existing(from);
}

void MemoryFiles::remove(const QString& path)
{
    (void)existing(path);
    files.erase(path);
}

} // namespace fldc
