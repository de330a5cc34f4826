#include "fldc/files/InputFiles.h"

#include "certificate/RunObjects.h"
#include "firmware/check/ContentHash.h"
#include "platform/PlatformFailure.h"
#include "platform/qt/FileService.h"

#include <algorithm>
#include <cerrno>

namespace fldc::cli {

using namespace Qt::StringLiterals;

namespace {

// Shares what was read; the component's readers own their content.
class SharedContent final : public IFileContent {
public:
    explicit SharedContent(std::shared_ptr<const IFileContent> content)
        : m_content(std::move(content))
    {
    }
    [[nodiscard]] std::span<const std::uint8_t> bytes() const override
    {
        return m_content->bytes();
    }

private:
    std::shared_ptr<const IFileContent> m_content;
};

// The system's words without the path before them.
QString reasonOf(const PlatformFailure& failure, const QString& path)
{
    const QString prefix = path + u": "_s;
    const QString& text = failure.description();
    return text.startsWith(prefix) ? text.sliced(prefix.size()) : text;
}

} // namespace

void InputFiles::read(const std::vector<std::string>& names, const std::function<bool()>& wantsEnd)
{
    for (const std::string& name : names) {
        InputFile file;
        file.path = QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
        file.key = keyFor(file.path, name);
        try {
            file.content = FileService::readNative(QByteArray::fromStdString(name), file.path);
            file.sha256 = sha256Of(file.content->bytes(), [&](double) { return !wantsEnd(); });
        } catch (const std::exception&) {
            const PlatformFailure failure = currentFailure();
            file.failure = reasonOf(failure, file.path);
            file.missing = failure.number() == ENOENT;
        }
        m_files.push_back(std::move(file));
        m_names.push_back(name);
        if (wantsEnd())
            return;
    }
}

// Different names may look the same as text.
QString InputFiles::keyFor(const QString& path, const std::string& name) const
{
    QString key = path;
    for (int number = 2;; ++number) {
        const InputFile* other = find(key);
        if (other == nullptr || m_names[static_cast<std::size_t>(other - m_files.data())] == name)
            return key;
        key = path + u" (%1)"_s.arg(number);
    }
}

const InputFile* InputFiles::find(const QString& key) const
{
    const auto found = std::ranges::find(m_files, key, &InputFile::key);
    return found == m_files.end() ? nullptr : &*found;
}

QJsonArray InputFiles::toJson() const
{
    QJsonArray array;
    for (const InputFile& file : m_files) {
        NamedFile named{file.path, file.sha256, std::nullopt};
        if (file.content)
            named.bytes = static_cast<qint64>(file.content->bytes().size());
        array.append(namedFileObject(named));
    }
    return array;
}

bool InputFiles::exists(const QString& path)
{
    const InputFile* file = find(path);
    return file != nullptr ? file->content != nullptr : m_others.exists(path);
}

std::unique_ptr<IFileContent> InputFiles::read(const QString& path)
{
    const InputFile* file = find(path);
    if (file == nullptr)
        return m_others.read(path);
    if (!file->content)
        throw PlatformFailure(FailureNumber::FileNotFound, path + u": "_s + file->failure);
    return std::make_unique<SharedContent>(file->content);
}

} // namespace fldc::cli
