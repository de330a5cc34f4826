#include "ui/logic/DownloadWindow.h"

#include "app/services/LogState.h"
#include "manager/Operation.h"
#include "manager/clsDLManager.h"
#include "platform/IProgramInfo.h"
#include "platform/ISerialControl.h"
#include "platform/ITimers.h"
#include "platform/Platform.h"
#include "shared/DisplayTexts.h"
#include "shared/LastError.h"

#include <algorithm>
#include <array>
#include <utility>

namespace fldc {

namespace {

constexpr std::array baudRates{u"Auto", u"115200", u"19200", u"9600", u"57600"};

QString twoDigits(int number)
{
    return QString::number(number).rightJustified(2, u'0');
}

// "Kelvane Download Component (1.21.00.00)"
QString captionText(const ProgramVersion& version, bool logging)
{
    return displayText(Text::ProductName) + QStringLiteral(" (") + QString::number(version.major) +
           u'.' + twoDigits(version.minor) + QStringLiteral(".00.") + twoDigits(version.revision) +
           u')' + (logging ? QStringLiteral(" - Debug") : QString());
}

} // namespace

DownloadWindow::DownloadWindow(const Platform& platform, ViewFactory makeView)
    : m_platform(platform), m_makeView(std::move(makeView)),
      m_control(platform.serialControls.create())
{
}

DownloadWindow::~DownloadWindow()
{
    m_platform.timers.stop(m_passingTimer);
}

void DownloadWindow::addObserver(IWindowObserver& observer)
{
    m_observers.push_back(&observer);
}

void DownloadWindow::removeObserver(IWindowObserver& observer)
{
    std::erase(m_observers, &observer);
}

void DownloadWindow::changed(WindowPart part)
{
    if (const auto view = m_view)
        view->windowChanged(part);
    for (IWindowObserver* observer : m_observers)
        observer->windowChanged(part);
}

void DownloadWindow::load()
{
    if (m_loaded)
        return;
    m_loaded = true;
    readPorts();
    selectPort(0);
    m_caption = captionText(m_platform.program.version(), logState().enabled);
    setStatusPanelTag(displayText(Text::Status));
    m_accessLevelVisible = logState().enabled;
    setBaudRateIndex(0);
}

void DownloadWindow::show()
{
    load();
    if (!m_view && m_makeView)
        m_view = m_makeView(*this);
    if (m_view)
        m_view->showView();
    m_visible = true;
    if (m_view && !m_portWatch)
        m_portWatch = m_platform.ports.watch([this] { lookForPorts(); });
}

void DownloadWindow::hide()
{
    if (m_view)
        m_view->hideView();
    m_visible = false;
}

void DownloadWindow::unload()
{
    // The manager's reference may be the last one.
    const auto self = weak_from_this().lock();
    hide();
    m_portWatch.reset();
    m_view.reset();
    clsDLManager* manager = m_DLManager;
    m_DLManager = nullptr;
    if (manager != nullptr)
        manager->ReleaseWindow();
}

bool DownloadWindow::requestClose(bool sessionEnds)
{
    const bool operating = m_blnBusy || operationRuns();
    if (operating && !sessionEnds)
        return false;
    if (operating && m_DLManager != nullptr)
        m_DLManager->cancelOperation();
    unload();
    return true;
}

void DownloadWindow::toggleMark(std::size_t row)
{
    m_configurations.toggleMark(row);
    changed(WindowPart::Marks);
    m_eraseEnabled = !m_blnBusy && m_configurations.anyMarked();
    changed(WindowPart::Controls);
}

void DownloadWindow::EnableControls(bool enable)
{
    m_controlsEnabled = enable;
    m_eraseEnabled = false;
    changed(WindowPart::Controls);
}

void DownloadWindow::setBusy(bool busy)
{
    m_blnBusy = busy;
    operationEnded();
}

void DownloadWindow::refuseDownload()
{
    setStatusPanelStatus(statusLine({}));
    if (m_view)
        m_view->downloadRefused();
}

void DownloadWindow::showFailureReport(const QString& text, const std::function<void()>& closed)
{
    if (m_view)
        m_view->showFailureReport(text, closed);
    else
        closed();
}

void DownloadWindow::showNotice(const QString& text)
{
    if (m_view)
        m_view->showNotice(text);
}

void DownloadWindow::setRemark(const QString& text)
{
    m_remark = text.left(1).toUpper() + text.mid(1);
    changed(WindowPart::Remark);
}

std::int32_t DownloadWindow::baudRateCount() const
{
    return static_cast<std::int32_t>(baudRates.size());
}

QString DownloadWindow::baudRateEntry(std::int32_t index) const
{
    return QString::fromUtf16(baudRates.at(static_cast<std::size_t>(index)));
}

void DownloadWindow::setBaudRateIndex(std::int32_t index)
{
    if (index == m_baudRateIndex)
        return;
    m_baudRateIndex = index;
    changed(WindowPart::BaudRate);
}

void DownloadWindow::setAccessLevelChecked(bool checked)
{
    if (checked == m_accessLevelChecked)
        return;
    m_accessLevelChecked = checked;
    changed(WindowPart::AccessLevel);
}

void DownloadWindow::setStatusPanelTag(const QString& strData)
{
    m_tag = strData.isEmpty() ? displayText(Text::StatusColumn) : strData;
    changed(WindowPart::Status);
}

void DownloadWindow::setStatusPanelStatus(const QString& strData)
{
    m_status = strData.isEmpty() ? displayText(Text::Ready) : strData;
    changed(WindowPart::Status);
    logDownload(m_status);
}

void DownloadWindow::setPassingStatus(const QString& text)
{
    const bool passing = m_passingTimer != 0 && m_status == m_passingStatus;
    const QString own = passing ? m_ownStatus : m_status;
    m_platform.timers.stop(std::exchange(m_passingTimer, 0));
    setStatusPanelStatus(text);
    if (!operationRuns())
        return;
    m_ownStatus = own;
    m_passingStatus = m_status;
    m_passingTimer = m_platform.timers.start(passingTime, [this] { endPassingStatus(); });
}

// What the operation has shown in the meantime stays.
void DownloadWindow::endPassingStatus()
{
    m_platform.timers.stop(std::exchange(m_passingTimer, 0));
    if (!operationRuns() || m_status != m_passingStatus)
        return;
    m_status = m_ownStatus;
    changed(WindowPart::Status);
}

void DownloadWindow::setStatusPanelBaud(const QString& strData)
{
    m_baud = strData.isEmpty() ? displayText(Text::NotConnected) : strData;
    changed(WindowPart::Status);
}

void DownloadWindow::setFileNameTextBox(const QString& strData)
{
    m_fileName = strData;
    changed(WindowPart::FileName);
}

void DownloadWindow::setProgressBar(std::int16_t intValue)
{
    const int progress = std::clamp<int>(intValue, 0, 100);
    if (progress == m_progress)
        return;
    m_progress = progress;
    changed(WindowPart::Progress);
}

void DownloadWindow::ResetProgessBar()
{
    setProgressBar(0);
}

void DownloadWindow::UpdateLabels(const colConfigurations& configurations, bool blnF1KeyRequired)
{
    setFileNameTextBox({});
    m_configurations.fill(configurations, blnF1KeyRequired);
    changed(WindowPart::Configurations);
    m_eraseEnabled = false;
    changed(WindowPart::Controls);
}

} // namespace fldc
