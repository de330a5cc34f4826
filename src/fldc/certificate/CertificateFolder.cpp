#include "fldc/certificate/CertificateFolder.h"

#include "platform/PlatformFailure.h"

#include <QFile>
#include <QRandomGenerator>

#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <stdio.h>

namespace fldc::cli {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype longestAbout = 200; // of a file name's 255 bytes
constexpr int mostAttempts = 1000;

} // namespace

CertificateFolder::CertificateFolder(const std::string& path) : m_path(QString::fromStdString(path))
{
    std::error_code error;
    std::filesystem::create_directories(path, error);
    if (error)
        fail(error.value());
    m_folder = FileDescriptor(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!m_folder.valid())
        fail(errno);
    if (::unlinkat(m_folder.get(), writeTemporary("{}").constData(), 0) != 0)
        fail(errno);
}

QString CertificateFolder::write(const QByteArray& content, const QDateTime& time,
                                 const QString& about) const
{
    const QByteArray temporary = writeTemporary(content);
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        const QString name = certificateName(time.addMSecs(attempt), about);
        if (give(temporary, QFile::encodeName(name))) {
            // The name, too, is to survive a loss of power. Some file systems can't promise it.
            (void)::fsync(m_folder.get());
            return name;
        }
        if (errno != EEXIST)
            break;
    }
    const int error = errno;
    (void)::unlinkat(m_folder.get(), temporary.constData(), 0);
    fail(error);
}

// The name of a new file with that content, safely on the disk.
QByteArray CertificateFolder::writeTemporary(const QByteArray& content) const
{
    const QByteArray name = ".certificate-" + QByteArray::number(::getpid()) + '-' +
                            QByteArray::number(QRandomGenerator::global()->generate(), 16);
    FileDescriptor file(
        ::openat(m_folder.get(), name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644));
    if (!file.valid())
        fail(errno);
    int error = writeAll(file.get(), {content.constData(), std::size_t(content.size())});
    if (error == 0 && ::fsync(file.get()) != 0)
        error = errno;
    if (const int closing = file.close(); error == 0)
        error = closing;
    if (error != 0) {
        (void)::unlinkat(m_folder.get(), name.constData(), 0);
        fail(error);
    }
    return name;
}

// Gives the temporary file its name; false, and errno, when that fails or the name is taken.
bool CertificateFolder::give(const QByteArray& temporary, const QByteArray& name) const
{
    const int folder = m_folder.get();
    if (::renameat2(folder, temporary.constData(), folder, name.constData(), RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS)
        return false;
    // A file system (NFS) that can't rename without replacing; a second name never replaces.
    if (::linkat(folder, temporary.constData(), folder, name.constData(), 0) != 0)
        return false;
    (void)::unlinkat(folder, temporary.constData(), 0);
    return true;
}

void CertificateFolder::fail(int error) const
{
    throw PlatformFailure::fromErrno(error, m_path);
}

QString certificateName(const QDateTime& time, const QString& about)
{
    QString name = time.toUTC().toString(Qt::ISODateWithMs) + u'-' + about.left(longestAbout);
    for (QChar& character : name) {
        const char16_t code = character.unicode();
        const bool kept = (code >= u'a' && code <= u'z') || (code >= u'A' && code <= u'Z') ||
                          (code >= u'0' && code <= u'9') || code == u'.' || code == u'_' ||
                          code == u'-';
        if (!kept)
            character = u'_';
    }
    return name + u".json"_s;
}

} // namespace fldc::cli
