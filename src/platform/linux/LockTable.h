#pragma once

#include <QList>

#include <sys/types.h>

namespace fldc {

class LinuxSystem;
struct DeviceNode;

/// The locks held on files, from /proc/locks: one moment's picture. The system leaves out the locks
/// of processes outside a container.
class LockTable {
public:
    explicit LockTable(const LinuxSystem& system);

    /// False when the table can't be read: then nothing is known.
    [[nodiscard]] bool isKnown() const { return m_known; }
    /// Numbers of the processes that took a lock on the file; 0 for a lock without a process. The
    /// process may have ended and left its lock to a child.
    [[nodiscard]] QList<qint64> owners(const DeviceNode& node) const;

private:
    struct Lock {
        qint64 pid = 0;
        unsigned major = 0;
        unsigned minor = 0;
        ino_t inode = 0;
    };
    void add(const QByteArray& line);

    bool m_known = false;
    QList<Lock> m_locks;
};

} // namespace fldc
