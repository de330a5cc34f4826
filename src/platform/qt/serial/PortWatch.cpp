#include "platform/qt/serial/PortWatch.h"

#include "platform/RemoteAddress.h"
#include "platform/linux/LinuxSystem.h"
#include "platform/qt/CallbackGuard.h"

#include <QFileInfo>

#include <chrono>
#include <utility>

namespace fldc {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

// Until udev has done what it does for a new device.
constexpr auto settlingTime = 250ms;

// The folder of @p path, or the next above it that is there.
QString folderOf(const QString& path)
{
    QString folder = path;
    do {
        folder = QFileInfo(folder).path();
    } while (!QFileInfo::exists(folder));
    return folder;
}

} // namespace

PortWatch::PortWatch(std::function<PortMap()> ports, const LinuxSystem& system,
                     std::function<void()> changed)
    : m_ports(std::move(ports)), m_system(system), m_changed(std::move(changed))
{
    m_settled.setSingleShot(true);
    QObject::connect(&m_folders, &QFileSystemWatcher::directoryChanged, &m_settled, [this] {
        if (!m_settled.isActive())
            m_settled.start(settlingTime);
    });
    QObject::connect(&m_settled, &QTimer::timeout, &m_settled,
                     [this] { callGuarded([this] { look(); }); });
    const PortMap present = m_ports();
    watchFolders(present);
    m_sights = sightsOf(present);
}

void PortWatch::look()
{
    const PortMap present = m_ports();
    watchFolders(present);
    if (const auto now = sightsOf(present); std::exchange(m_sights, now) == now)
        return;
    const auto changed = m_changed;
    changed();
}

std::vector<PortWatch::Sight> PortWatch::sightsOf(const PortMap& ports) const
{
    std::vector<Sight> sights;
    sights.reserve(static_cast<std::size_t>(ports.size()));
    for (auto port = ports.constBegin(); port != ports.constEnd(); ++port) {
        const DeviceNode node = m_system.node(port.value());
        sights.push_back(
            {port.key(), port.value(), node.error, node.device, node.readable, node.writable});
    }
    return sights;
}

// New devices come in /dev; a link to one may stand elsewhere.
void PortWatch::watchFolders(const PortMap& ports)
{
    QStringList wanted{u"/dev"_s};
    for (const QString& path : ports) {
        if (isRemote(path))
            continue;
        wanted.append(folderOf(path));
        if (const QString device = m_system.realPath(path); !device.isEmpty())
            wanted.append(folderOf(device));
    }
    wanted.removeDuplicates();
    const QStringList watched = m_folders.directories();
    for (const QString& folder : watched) {
        if (!wanted.contains(folder))
            m_folders.removePath(folder);
    }
    for (const QString& folder : std::as_const(wanted)) {
        if (!watched.contains(folder))
            m_folders.addPath(folder);
    }
}

} // namespace fldc
