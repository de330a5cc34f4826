#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>
#include <utility>

#include <sys/types.h>

namespace fldc {

/// What the system says of a file, links followed, without opening it.
struct DeviceNode {
    int error = 0;        ///< errno of the look; the rest is void unless it is 0
    mode_t mode = 0;      ///< kind and permission bits
    dev_t fileSystem = 0; ///< with inode: the file, as the lock table names it
    ino_t inode = 0;
    dev_t device = 0; ///< the driver's number; 0 when the file is no device
    uid_t owner = 0;
    gid_t group = 0;
    bool readable = false; ///< the system's own answer for this process's effective rights
    bool writable = false;
    bool hasAcl = false; ///< the group bits of mode are then the mask of the list, not a permission

    [[nodiscard]] bool isCharacterDevice() const;
    /// Number of the pseudo-terminal whose near end the device is.
    [[nodiscard]] std::optional<unsigned> ptyIndex() const;
};

/// The files in which Linux tells about itself: /proc, /sys, /run/udev/data and /dev. Nothing here
/// opens a device. Tests give another root folder and override what a folder can't imitate.
class LinuxSystem {
public:
    /// @p root stands in front of every path; without a slash at its end.
    explicit LinuxSystem(QString root = {});
    /// With everything where it belongs.
    [[nodiscard]] static const LinuxSystem& thisMachine();
    virtual ~LinuxSystem() = default;
    LinuxSystem(const LinuxSystem&) = delete;
    LinuxSystem& operator=(const LinuxSystem&) = delete;

    [[nodiscard]] virtual DeviceNode node(const QString& path) const;
    /// Name of the group; its number when it has none.
    [[nodiscard]] virtual QString groupName(gid_t group) const;
    /// Whether the user's next login would be in the group: the data base names the user, but this
    /// process began before.
    [[nodiscard]] virtual bool joinsAtNextLogin(gid_t group) const;

    /// Content of a file of the system, at most 4 MiB; nothing when it can't be read.
    [[nodiscard]] std::optional<QByteArray> read(const QString& path) const;
    /// read() as text without the white space around it; empty when it can't be read.
    [[nodiscard]] QString text(const QString& path) const;

    struct Folder {
        QStringList names; ///< in no order
        int error = 0;     ///< errno; the names are those read before it
    };
    [[nodiscard]] Folder folder(const QString& path) const;

    struct Links {
        QList<std::pair<QString, QString>> targets; ///< name and what the link says
        int error = 0;
    };
    /// The links in a folder that lead to a path ("socket:[12]" is none); what a process has open.
    [[nodiscard]] virtual Links links(const QString& folder) const;

    /// What the link says; empty when it is no link or can't be read. The target is not touched.
    [[nodiscard]] QString linkText(const QString& path) const;
    /// The path with all links followed; empty when there is no such file.
    [[nodiscard]] QString realPath(const QString& path) const;

private:
    [[nodiscard]] QByteArray native(const QString& path) const;

    QString m_root;
};

} // namespace fldc
