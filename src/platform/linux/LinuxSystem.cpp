#include "platform/linux/LinuxSystem.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <memory>
#include <system_error>
#include <utility>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace fldc {

namespace {

constexpr qint64 longestFile = 4 << 20;

// Major numbers of the near ends of pseudo-terminals, 256 to a number (the kernel's devices.txt).
constexpr unsigned firstPtyMajor = 136;
constexpr unsigned lastPtyMajor = 143;

bool mayAccess(const char* path, int mode)
{
    return ::faccessat(AT_FDCWD, path, mode, AT_EACCESS) == 0;
}

/// A name and its numbers from a data base that wants a buffer of unknown size.
template <typename Entry, typename Ask>
bool lookUp(Entry& entry, std::vector<char>& texts, Ask ask)
{
    texts.resize(4096);
    Entry* found = nullptr;
    int error = ask(&entry, texts.data(), texts.size(), &found);
    while (error == ERANGE && texts.size() < (1U << 20U)) {
        texts.resize(texts.size() * 4);
        error = ask(&entry, texts.data(), texts.size(), &found);
    }
    return error == 0 && found != nullptr;
}

} // namespace

bool DeviceNode::isCharacterDevice() const
{
    return error == 0 && S_ISCHR(mode);
}

std::optional<unsigned> DeviceNode::ptyIndex() const
{
    const unsigned number = major(device);
    if (number < firstPtyMajor || number > lastPtyMajor)
        return std::nullopt;
    return (number - firstPtyMajor) * 256 + minor(device);
}

LinuxSystem::LinuxSystem(QString root) : m_root(std::move(root)) {}

const LinuxSystem& LinuxSystem::thisMachine()
{
    static const LinuxSystem machine;
    return machine;
}

QByteArray LinuxSystem::native(const QString& path) const
{
    return QFile::encodeName(m_root + path);
}

DeviceNode LinuxSystem::node(const QString& path) const
{
    const QByteArray name = native(path);
    struct stat status {};
    DeviceNode node;
    if (::stat(name.constData(), &status) == -1) {
        node.error = errno;
        return node;
    }
    node.mode = status.st_mode;
    node.fileSystem = status.st_dev;
    node.inode = status.st_ino;
    node.device = S_ISCHR(status.st_mode) || S_ISBLK(status.st_mode) ? status.st_rdev : 0;
    node.owner = status.st_uid;
    node.group = status.st_gid;
    node.readable = mayAccess(name.constData(), R_OK);
    node.writable = mayAccess(name.constData(), W_OK);
    node.hasAcl = ::getxattr(name.constData(), "system.posix_acl_access", nullptr, 0) > 0;
    return node;
}

QString LinuxSystem::groupName(gid_t group) const
{
    struct group entry {};
    std::vector<char> texts;
    const bool found =
        lookUp(entry, texts, [group](auto* to, char* buffer, std::size_t size, auto** result) {
            return ::getgrgid_r(group, to, buffer, size, result);
        });
    return found ? QString::fromLocal8Bit(entry.gr_name) : QString::number(group);
}

bool LinuxSystem::joinsAtNextLogin(gid_t group) const
{
    struct passwd user {};
    std::vector<char> texts;
    const bool found =
        lookUp(user, texts, [](auto* to, char* buffer, std::size_t size, auto** result) {
            return ::getpwuid_r(::geteuid(), to, buffer, size, result);
        });
    if (!found)
        return false;
    int count = 0;
    ::getgrouplist(user.pw_name, user.pw_gid, nullptr, &count);
    std::vector<gid_t> groups(static_cast<std::size_t>(std::max(count, 0)));
    if (::getgrouplist(user.pw_name, user.pw_gid, groups.data(), &count) == -1)
        return false;
    return std::ranges::find(groups, group) != groups.end() && ::group_member(group) == 0;
}

std::optional<QByteArray> LinuxSystem::read(const QString& path) const
{
    QFile file(m_root + path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return std::nullopt;
    return file.read(longestFile);
}

QString LinuxSystem::text(const QString& path) const
{
    return QString::fromUtf8(read(path).value_or(QByteArray())).trimmed();
}

LinuxSystem::Folder LinuxSystem::folder(const QString& path) const
{
    Folder folder;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(native(path).constData(), error), end;
         !error && entry != end; entry.increment(error))
        folder.names.append(QFile::decodeName(entry->path().filename().c_str()));
    folder.error = error.value();
    return folder;
}

// A machine has thousands of open files: the folder is looked up once, not for each of them.
LinuxSystem::Links LinuxSystem::links(const QString& folder) const
{
    Links links;
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(::opendir(native(folder).constData()),
                                                      ::closedir);
    if (!entries) {
        links.error = errno;
        return links;
    }
    std::array<char, 4096> text{};
    while (const dirent* entry = ::readdir(entries.get())) {
        const ssize_t length =
            ::readlinkat(::dirfd(entries.get()), entry->d_name, text.data(), text.size());
        if (length > 0 && text[0] == '/')
            links.targets.append({QFile::decodeName(entry->d_name),
                                  QFile::decodeName(QByteArray(text.data(), length))});
    }
    return links;
}

QString LinuxSystem::linkText(const QString& path) const
{
    std::array<char, 4096> text{};
    const ssize_t length = ::readlink(native(path).constData(), text.data(), text.size());
    return length <= 0 ? QString() : QFile::decodeName(QByteArray(text.data(), length));
}

QString LinuxSystem::realPath(const QString& path) const
{
    const QString real = QFileInfo(m_root + path).canonicalFilePath();
    if (m_root.isEmpty())
        return real;
    const QString root = QFileInfo(m_root).canonicalFilePath();
    return real.startsWith(root + u'/') ? real.sliced(root.size()) : QString();
}

} // namespace fldc
