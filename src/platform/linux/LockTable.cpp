#include "platform/linux/LockTable.h"

#include "platform/linux/LinuxSystem.h"

#include <algorithm>

#include <sys/sysmacros.h>

namespace fldc {

LockTable::LockTable(const LinuxSystem& system)
{
    const auto table = system.read(QStringLiteral("/proc/locks"));
    m_known = table.has_value();
    for (const QByteArray& line : table.value_or(QByteArray()).split('\n'))
        add(line);
}

// 1: FLOCK  ADVISORY  WRITE 14360 00:1a:3 0 EOF
// 1: -> FLOCK  ADVISORY  WRITE 14361 00:1a:3 0 EOF      (waits for it)
void LockTable::add(const QByteArray& line)
{
    const QList<QByteArray> words = line.simplified().split(' ');
    if (words.size() < 6 || words[1] == "->")
        return;
    const QList<QByteArray> file = words[5].split(':');
    if (file.size() != 3)
        return;
    m_locks.append({std::max<qint64>(words[4].toLongLong(), 0), file[0].toUInt(nullptr, 16),
                    file[1].toUInt(nullptr, 16), file[2].toULong()});
}

QList<qint64> LockTable::owners(const DeviceNode& node) const
{
    QList<qint64> pids;
    for (const Lock& lock : m_locks) {
        if (lock.inode == node.inode && lock.major == major(node.fileSystem) &&
            lock.minor == minor(node.fileSystem) && !pids.contains(lock.pid))
            pids.append(lock.pid);
    }
    return pids;
}

} // namespace fldc
