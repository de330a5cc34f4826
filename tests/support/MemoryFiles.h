#pragma once

#include "platform/IClock.h"
#include "platform/IFileService.h"

#include <map>
#include <set>

namespace fldc {

/// Files in memory, by their path as given. What is written gets the clock's date.
class MemoryFiles final : public IFileService {
public:
    struct File {
        QByteArray content;
        QDate changed{2026, 11, 22};
    };

    explicit MemoryFiles(const IClock& clock) : m_clock(clock) {}

    std::map<QString, File> files;
    std::set<QString> inUse;      ///< held, by another program or through openForAppending
    std::set<QString> unwritable; ///< EACCES to open, replace or remove, ENOSPC to write

    [[nodiscard]] bool exists(const QString& path) override { return files.contains(path); }
    [[nodiscard]] std::unique_ptr<IOutputFile> openForAppending(const QString& path) override;
    [[nodiscard]] std::unique_ptr<IOutputFile> openForWriting(const QString& path) override;
    void checkWritable(const QString& path) override;
    [[nodiscard]] std::unique_ptr<IFileContent> read(const QString& path) override;
    [[nodiscard]] QDate lastModified(const QString& path) override;
    void copy(const QString& from, const QString& to) override;
    void remove(const QString& path) override;

private:
    class Output;

    File& existing(const QString& path);
    void checkPermitted(const QString& path) const;

    const IClock& m_clock;
};

} // namespace fldc
