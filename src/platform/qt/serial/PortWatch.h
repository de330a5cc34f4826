#pragma once

#include "platform/qt/serial/PortNames.h"

#include <QFileSystemWatcher>
#include <QTimer>

#include <functional>
#include <vector>

#include <sys/types.h>

namespace fldc {

class LinuxSystem;

/// Tells when serial ports have come or gone, or when somebody else may use them: the folders that
/// their devices stand in are watched (inotify, by Qt), and what has happened there is looked at
/// once it has settled, because the system makes a device first and gives it its rights and names
/// afterwards. No device is opened.
class PortWatch {
public:
    /// @p ports: those to watch, asked again whenever something has happened. @p changed may let go
    /// of the object.
    PortWatch(std::function<PortMap()> ports, const LinuxSystem& system,
              std::function<void()> changed);

private:
    /// What is seen of a port without opening it.
    struct Sight {
        int number;
        QString path;
        int error;
        dev_t device;
        bool readable;
        bool writable;
        friend bool operator==(const Sight&, const Sight&) = default;
    };

    void look();
    [[nodiscard]] std::vector<Sight> sightsOf(const PortMap& ports) const;
    void watchFolders(const PortMap& ports);

    std::function<PortMap()> m_ports;
    const LinuxSystem& m_system;
    std::function<void()> m_changed;
    QFileSystemWatcher m_folders;
    QTimer m_settled;
    std::vector<Sight> m_sights; ///< when they were last looked at
};

} // namespace fldc
