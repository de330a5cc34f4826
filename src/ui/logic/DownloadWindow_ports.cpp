#include "ui/logic/DownloadWindow.h"

#include "manager/Operation.h"
#include "manager/clsDLManager.h"
#include "platform/ISerialControl.h"
#include "platform/Platform.h"
#include "platform/PlatformFailure.h"
#include "port/PortEnumeration.h"
#include "shared/LastError.h"
#include "shared/NumberText.h"

#include <algorithm>
#include <utility>

namespace fldc {

namespace {

// Of an entry that names a port.
QString entryName(const QString& entry)
{
    return entry.left(entry.indexOf(u':') + 1);
}

QString tipOf(const IPortListing::Details& port)
{
    QStringList lines;
    const QString number =
        port.serialNumber.isEmpty() ? QString() : u"Serial number " + port.serialNumber;
    QString obstacle = port.obstacle;
    if (!obstacle.isEmpty())
        obstacle = obstacle.front().toUpper() + obstacle.sliced(1) + u". " + port.remedy;
    for (const QString& line : {port.adapter, number, port.path, obstacle}) {
        if (!line.isEmpty())
            lines.append(line);
    }
    return lines.join(u'\n').remove(u'<'); // which could make it a text with formats
}

} // namespace

void DownloadWindow::selectPort(int index)
{
    if (index == m_portIndex && !m_portOwed)
        return;
    const int indexBefore = std::exchange(m_portIndex, index);
    const QString textBefore = std::exchange(m_portText, m_ports.at(index));
    const bool owedBefore = std::exchange(m_portOwed, false);
    changed(WindowPart::Ports);
    if (m_DLManager == nullptr ||
        m_DLManager->SetPort(m_portText, m_uiDisplay) != static_cast<int>(Code::PortInUseHere))
        return;
    m_portIndex = indexBefore;
    m_portText = textBefore;
    m_portOwed = owedBefore;
    changed(WindowPart::Ports);
}

void DownloadWindow::typePort(const QString& text)
{
    m_portIndex = -1;
    m_portText = text;
    m_portOwed = false;
}

void DownloadWindow::settlePort()
{
    if (m_portOwed)
        selectPort(m_portIndex);
}

bool DownloadWindow::PortExists(const QString& strPort) const
{
    const bool isNumber = readNumber(strPort).has_value();
    return std::ranges::any_of(m_ports, [&](const QString& entry) {
        return isNumber ? QString::number(PortNumber(entry)) == strPort : entry == strPort;
    });
}

void DownloadWindow::readPorts()
{
    m_anyPort = GetSerialPorts(m_platform.ports, m_ports) != 0;
    if (!m_anyPort)
        m_ports = QStringList(QStringLiteral("No available COM ports"));
}

void DownloadWindow::RefreshPorts()
{
    m_refreshDue = false;
    const bool anyBefore = m_anyPort;
    readPorts();
    if (m_portIndex >= 0 && anyBefore)
        keepChosenPort();
    else if (m_portIndex >= 0 && m_anyPort)
        takeFirstPort();
    if (m_described)
        m_details = m_platform.ports.details();
    changed(WindowPart::Ports);
}

// One that has gone stays where it was, so that nothing else is taken for it.
void DownloadWindow::keepChosenPort()
{
    const std::int32_t number = PortNumber(m_portText);
    if (!m_anyPort)
        m_ports.clear();
    auto entry = std::ranges::find(m_ports, number, &PortNumber);
    if (entry == m_ports.end()) {
        const auto behind = std::ranges::find_if(
            m_ports, [number](const QString& other) { return PortNumber(other) > number; });
        entry = m_ports.insert(behind, entryName(m_portText) + QStringLiteral(" (unavailable)"));
    }
    m_anyPort = true;
    m_portIndex = static_cast<int>(entry - m_ports.begin());
    m_portText = *entry;
}

// The first port of a machine that had none: shown at once, and made the manager's when something
// is done with it. What the status says of having no port is over.
void DownloadWindow::takeFirstPort()
{
    m_portIndex = 0;
    m_portText = m_ports.constFirst();
    m_portOwed = true;
    setStatusPanelStatus({});
}

void DownloadWindow::lookForPorts()
{
    if (m_blnBusy || operationRuns())
        m_refreshDue = true;
    else
        RefreshPorts();
}

void DownloadWindow::operationEnded()
{
    if (m_refreshDue)
        lookForPorts();
}

void DownloadWindow::describePorts()
{
    m_described = true;
    lookForPorts();
}

QString DownloadWindow::portTip(const QString& entry) const
{
    const auto port = std::ranges::find(m_details, entryName(entry), &IPortListing::Details::name);
    return port == m_details.end() ? QString() : tipOf(*port);
}

IPortListing::Details DownloadWindow::chosenPort() const
{
    const auto all = m_platform.ports.details();
    try {
        // Over typed text the manager keeps its port.
        const std::int32_t number =
            m_portIndex < 0 ? m_control->commPort() : PortNumber(m_portText);
        const auto port = std::ranges::find_if(
            all, [number](const auto& each) { return PortNumber(each.name) == number; });
        return port == all.end() ? IPortListing::Details{m_portText, {}, {}, {}, {}, {}} : *port;
    } catch (const PlatformFailure&) {
        IPortListing::Details none;
        none.obstacle = QStringLiteral("no serial port");
        none.remedy = QStringLiteral("Plug in the adapter.");
        return none;
    }
}

void DownloadWindow::SetPortCombo(const QString& strPort)
{
    const auto number = readNumber(strPort);
    const auto found = std::ranges::find_if(m_ports, [&](const QString& entry) {
        return number ? PortNumber(entry) == *number : entry == strPort;
    });
    if (found != m_ports.end())
        selectPort(static_cast<int>(found - m_ports.begin()));
}

} // namespace fldc
