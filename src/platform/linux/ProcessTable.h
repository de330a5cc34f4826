#pragma once

#include <QList>
#include <QSet>
#include <QString>

#include <optional>

namespace fldc {

class LinuxSystem;
struct DeviceNode;

struct Process {
    qint64 pid = 0;  ///< 0: a process that can't be seen
    QString program; ///< empty: unknown
    friend bool operator==(const Process&, const Process&) = default;
};

/// A process that has a device open.
struct Holder {
    Process process;
    /// It holds the other end of this pseudo-terminal as well: it is what the line leads to (a
    /// simulated radio), no other user of the line.
    bool isFarEnd = false;
    friend bool operator==(const Holder&, const Holder&) = default;
};

/// Who has which device open, from /proc: one moment's picture, taken by the constructor. A process
/// of another user tells its open files to root alone.
class ProcessTable {
public:
    explicit ProcessTable(const LinuxSystem& system);

    /// Processes that have the device @p node open, by this path (links followed) or another; each
    /// once, in the order of their numbers.
    [[nodiscard]] QList<Holder> holders(const QString& device, const DeviceNode& node) const;
    /// False when there may be holders that can't be seen.
    [[nodiscard]] bool isComplete() const { return m_hidden.isEmpty() && m_seesAll; }
    /// Whether the open files of that process could be read; false also when there is none.
    [[nodiscard]] bool seesFilesOf(qint64 pid) const { return m_visible.contains(pid); }

    /// Processes of that program; nothing when there is none among those that can be seen and
    /// some can't.
    [[nodiscard]] std::optional<QList<Process>> named(const QString& program) const;
    [[nodiscard]] Process process(qint64 pid) const;

private:
    struct OpenFile {
        qint64 pid = 0;
        QString descriptor;
        QString path; ///< in the process's own view
    };
    void scan(qint64 pid);
    [[nodiscard]] bool isDevice(const OpenFile& file, const QString& device,
                                const DeviceNode& node) const;
    [[nodiscard]] bool holdsFarEnd(qint64 pid, const DeviceNode& node) const;

    const LinuxSystem& m_system;
    QList<OpenFile> m_files;
    QSet<qint64> m_visible;
    QSet<qint64> m_hidden;
    bool m_seesAll = false; ///< other users' processes are listed
};

} // namespace fldc
