#pragma once

#include "platform/IFileService.h"

#include <map>
#include <set>

namespace fldc {

/// Files in memory, by their path as given.
class MemoryFiles final : public IFileService {
public:
    struct File {
        QByteArray content;
        QDate changed{2026, 11, 22};
    };

    std::map<QString, File> files;
    std::set<QString> inUse;      ///< held by another program
    std::set<QString> unwritable; ///< opening or writing fails with EACCES

    [[nodiscard]] bool exists(const QString& path) override { return files.contains(path); }
    [[nodiscard]] std::unique_ptr<IOutputFile> openForAppending(const QString& path) override;
    [[nodiscard]] std::unique_ptr<IOutputFile> openForWriting(const QString& path) override;
    void checkWritable(const QString& path) override;
    [[nodiscard]] std::unique_ptr<IFileContent> read(const QString& path) override;
    [[nodiscard]] QDate lastModified(const QString& path) override;
    void copy(const QString& from, const QString& to) override;
    void remove(const QString& path) override;

private:
    File& existing(const QString& path);
};

} // namespace fldc
