#pragma once

#include "platform/IFileService.h"

#include <QByteArray>
#include <QJsonArray>
#include <QString>

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace fldc::cli {

/// A file that was named on the command line.
struct InputFile {
    QString path;    ///< as it was given; bytes that are no UTF-8 stand as U+FFFD
    QString key;     ///< what the component knows it by: the path, made unique
    QString failure; ///< why it can't be read, in the system's words; empty when it was read
    bool missing = false;
    QByteArray sha256;                           ///< 32 bytes; empty when it was not read
    std::shared_ptr<const IFileContent> content; ///< null when it was not read
};

/// The files of the command line, each read once: what was hashed is what is inspected and sent,
/// whatever happens to the file meanwhile. For the component they stand under their keys in a file
/// service that hands everything else on.
class InputFiles final : public IFileService {
public:
    /// @p others answers for every other file.
    explicit InputFiles(IFileService& others) : m_others(others) {}

    /// Reads the files of these names (the system's bytes). Stops early when @p wantsEnd says so.
    void read(const std::vector<std::string>& names, const std::function<bool()>& wantsEnd);

    [[nodiscard]] const std::vector<InputFile>& items() const { return m_files; }
    /// For "started".
    [[nodiscard]] QJsonArray toJson() const;

    [[nodiscard]] bool exists(const QString& path) override;
    [[nodiscard]] std::unique_ptr<IFileContent> read(const QString& path) override;
    [[nodiscard]] std::unique_ptr<IOutputFile> openForAppending(const QString& path) override
    {
        return m_others.openForAppending(path);
    }
    [[nodiscard]] std::unique_ptr<IOutputFile> openForWriting(const QString& path) override
    {
        return m_others.openForWriting(path);
    }
    void checkWritable(const QString& path) override { m_others.checkWritable(path); }
    [[nodiscard]] QDate lastModified(const QString& path) override
    {
        return m_others.lastModified(path);
    }
    void copy(const QString& from, const QString& to) override { m_others.copy(from, to); }
    void remove(const QString& path) override { m_others.remove(path); }

private:
    [[nodiscard]] const InputFile* find(const QString& key) const;
    [[nodiscard]] QString keyFor(const QString& path, const std::string& name) const;

    IFileService& m_others;
    std::vector<InputFile> m_files;
    std::vector<std::string> m_names; ///< of m_files
};

} // namespace fldc::cli
