#include "platform/linux/ProcessTable.h"

#include "platform/linux/LinuxSystem.h"

#include <algorithm>
#include <cerrno>

namespace fldc {

using namespace Qt::StringLiterals;

namespace {

QString processFolder(qint64 pid)
{
    return u"/proc/%1"_s.arg(pid);
}

} // namespace

ProcessTable::ProcessTable(const LinuxSystem& system) : m_system(system)
{
    QStringList names = system.folder(u"/proc"_s).names;
    for (const QString& name : std::as_const(names)) {
        if (const qint64 pid = name.toLongLong(); pid > 0)
            scan(pid);
    }
    // Process 1 belongs to root; a /proc that hides other users' processes hides it.
    m_seesAll = m_visible.contains(1) || m_hidden.contains(1);
}

void ProcessTable::scan(qint64 pid)
{
    const LinuxSystem::Links open = m_system.links(processFolder(pid) + u"/fd"_s);
    if (open.error == EACCES || open.error == EPERM)
        m_hidden.insert(pid);
    if (open.error != 0)
        return; // a process that has ended meanwhile is no holder
    m_visible.insert(pid);
    for (const auto& [descriptor, path] : open.targets) {
        if (path != "/dev/null"_L1)
            m_files.append({pid, descriptor, path});
    }
}

QList<Holder> ProcessTable::holders(const QString& device, const DeviceNode& node) const
{
    QList<Holder> found;
    for (const OpenFile& file : m_files) {
        const bool known = std::ranges::any_of(
            found, [&](const Holder& holder) { return holder.process.pid == file.pid; });
        if (!known && isDevice(file, device, node))
            found.append({process(file.pid), holdsFarEnd(file.pid, node)});
    }
    std::ranges::sort(found, {}, [](const Holder& holder) { return holder.process.pid; });
    return found;
}

// A device may have another name in the process's view (a container). What the file really is would
// be asked of its file system, which may not answer for ever when that is on a network: only files
// below /dev are asked.
bool ProcessTable::isDevice(const OpenFile& file, const QString& device,
                            const DeviceNode& node) const
{
    if (!file.path.startsWith("/dev/"_L1))
        return file.path == device;
    const DeviceNode open = m_system.node(processFolder(file.pid) + u"/fd/"_s + file.descriptor);
    if (open.error != 0 || open.device == 0 || open.device != node.device)
        return false;
    // Each mount of pseudo-terminals numbers its own.
    return !node.ptyIndex() || open.fileSystem == node.fileSystem;
}

bool ProcessTable::holdsFarEnd(qint64 pid, const DeviceNode& node) const
{
    const auto index = node.ptyIndex();
    return index && std::ranges::any_of(m_files, [&](const OpenFile& file) {
               if (file.pid != pid || !file.path.endsWith("/ptmx"_L1))
                   return false;
               const QString about =
                   m_system.text(processFolder(pid) + u"/fdinfo/"_s + file.descriptor) + u'\n';
               return about.contains(u"\ntty-index:\t%1\n"_s.arg(*index));
           });
}

std::optional<QList<Process>> ProcessTable::named(const QString& program) const
{
    QList<Process> found;
    for (const auto& pids : {m_visible, m_hidden}) {
        for (const qint64 pid : pids) {
            if (Process one = process(pid); one.program == program)
                found.append(one);
        }
    }
    if (found.isEmpty() && !m_seesAll)
        return std::nullopt;
    std::ranges::sort(found, {}, &Process::pid);
    return found;
}

Process ProcessTable::process(qint64 pid) const
{
    const QString folder = processFolder(pid);
    QString program = m_system.text(folder + u"/comm"_s);
    // The system keeps 15 characters; the command line has the rest.
    if (program.size() == 15) {
        const QByteArray line = m_system.read(folder + u"/cmdline"_s).value_or(QByteArray());
        const QString first = QString::fromLocal8Bit(line.constData()).section(u'/', -1);
        if (first.startsWith(program))
            program = first;
    }
    return {pid, program};
}

} // namespace fldc
