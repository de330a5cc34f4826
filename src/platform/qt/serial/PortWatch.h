#pragma once

#include "platform/qt/serial/PortNames.h"

#include <QFileSystemWatcher>
#include <QStringList>
#include <QTimer>

#include <functional>

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
    void look();
    [[nodiscard]] QStringList picture(const PortMap& ports) const;
    void watchFolders(const PortMap& ports);

    std::function<PortMap()> m_ports;
    const LinuxSystem& m_system;
    std::function<void()> m_changed;
    QFileSystemWatcher m_folders;
    QTimer m_settled;
    QStringList m_picture; ///< of the ports when they were last looked at
};

} // namespace fldc
