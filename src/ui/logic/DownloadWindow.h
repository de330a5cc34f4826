#pragma once

#include "manager/IDownloadWindow.h"
#include "platform/IPortListing.h"
#include "ui/logic/ConfigurationList.h"

#include <QString>
#include <QStringList>

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

namespace fldc {

struct Platform;

/// What of the window has changed.
enum class WindowPart {
    Ports,
    BaudRate,
    AccessLevel,
    Status,
    FileName,
    Progress,
    Configurations, ///< the rows
    Marks,
    Controls, ///< which of them are enabled
    Remark,
};

/// Something that shows the window's state: the main window on a desktop, a line on a terminal.
/// Called inside the change, often in the middle of a conversation with a radio: it reads what it
/// wants to show, paints or writes it and returns. It does not wait, throw, or change the window.
class IWindowObserver {
public:
    virtual ~IWindowObserver() = default;
    virtual void windowChanged(WindowPart part) = 0;
};

/// The widgets of the main window. Made when the window is first shown.
class IWindowView : public IWindowObserver {
public:
    /// Throws PlatformFailure, ModalWindowOpen (401) when a modal window is open.
    virtual void showView() = 0;
    virtual void hideView() = 0;
    /// Shows a long text over the window, which takes no input meanwhile. Returns at once; @p
    /// closed is called when the user has closed it.
    virtual void showFailureReport(const QString& text, std::function<void()> closed) = 0;
    /// Shows a short text over the window. Returns at once.
    virtual void showNotice(const QString& text) = 0;
    /// The last error says why a download has not begun.
    virtual void downloadRefused() = 0;
};

/// The main window without its widgets: everything that the manager and the protocol read and write
/// there, and the rules of the port list. A view shows it when there is a user; a switch-driven run
/// needs none.
///
/// Why a run without a window has one: the port list, the chosen speed, the access level and the
/// status line are what operations read and write, and the rules between them (a refused port puts
/// the list back, a mark enables the erasure) must be the same whether or not they are on a screen.
/// So the state and the rules are here, and widgets, a line on a terminal and nothing at all are
/// three ways of showing it. This folder links no widgets, which the build enforces.
///
/// Owned by the manager; an operation holds it as well while it runs. The view is owned here, made
/// when the window is first shown, and let go by unload(). A view hands what the user does to the
/// members below and to ButtonOperations, and learns of every change through windowChanged(), of
/// its own as well: it has no state to keep in step.
class DownloadWindow final : public IDownloadWindow,
                             public std::enable_shared_from_this<DownloadWindow> {
public:
    /// The window lets its view go while it unloads, which may be in the middle of an event that
    /// the view handles: the pointer's deleter must bear that.
    using ViewFactory = std::function<std::shared_ptr<IWindowView>(DownloadWindow&)>;

    /// @p makeView may be empty: the window then counts as shown without anything on a screen.
    DownloadWindow(const Platform& platform, ViewFactory makeView);
    ~DownloadWindow() override;

    /// @p observer hears of every change until it is removed; it must be removed before it goes.
    void addObserver(IWindowObserver& observer);
    void removeObserver(IWindowObserver& observer);

    // -- State, for views
    [[nodiscard]] const QString& caption() const { return m_caption; }
    [[nodiscard]] clsDLManager* downLoadManager() const { return m_DLManager; }
    [[nodiscard]] const QStringList& portEntries() const { return m_ports; }
    /// Selected entry, from 0; -1 when the text is no chosen entry.
    [[nodiscard]] int portIndex() const { return m_portIndex; }
    [[nodiscard]] const QString& portText() const { return m_portText; }
    /// Adapter, serial number, path and what keeps the port from being used, line by line, as of
    /// the last reading of the list; empty before describePorts() and for what is no port.
    [[nodiscard]] QString portTip(const QString& entry) const;
    /// The same of the manager's port at this moment.
    [[nodiscard]] IPortListing::Details chosenPort() const;
    [[nodiscard]] const QString& statusPanelTag() const { return m_tag; }
    [[nodiscard]] const QString& statusPanelStatus() const { return m_status; }
    [[nodiscard]] const QString& statusPanelBaud() const { return m_baud; }
    [[nodiscard]] const QString& fileName() const { return m_fileName; }
    [[nodiscard]] int progress() const { return m_progress; }
    [[nodiscard]] bool accessLevelVisible() const { return m_accessLevelVisible; }
    [[nodiscard]] const ConfigurationList& configurations() const { return m_configurations; }
    [[nodiscard]] const QString& remark() const { return m_remark; }
    [[nodiscard]] IWindowView* view() const { return m_view.get(); }
    /// True while the operation of a button runs.
    [[nodiscard]] bool busy() const { return m_blnBusy; }
    /// Whether the port list, "Report Configuration" and "Download" can be used.
    [[nodiscard]] bool controlsEnabled() const { return m_controlsEnabled; }
    [[nodiscard]] bool eraseEnabled() const { return m_eraseEnabled; }

    // -- What the user does
    /// Selects the port entry at @p index, from 0. A change calls the manager's SetPort, exactly
    /// once; selecting the present entry does nothing. When the manager refuses because an
    /// operation runs, the list shows again what it showed before: the port that is in use.
    void selectPort(int index);
    /// Text typed over the port entry: no entry is selected any more, the manager keeps its port.
    void typePort(const QString& text);
    /// Hands the port that the list shows to the manager when it has not got it yet, because no
    /// port was there at the beginning.
    void settlePort();
    /// The list is opened, or ports have come or gone: reads it again, while an operation runs at
    /// its end.
    void lookForPorts();
    /// From now on the list is read with what portTip() tells.
    void describePorts();
    /// Marks or unmarks the row at @p row, from 0, and enables "Erase Configuration" by the marks.
    /// It stays disabled while an operation runs.
    void toggleMark(std::size_t row);
    /// The user, or the end of the desktop's session, asks the window to close. While an operation
    /// runs the user's request is refused, which returns false; the end of the session cancels the
    /// operation. Otherwise the window unloads.
    bool requestClose(bool sessionEnds);
    void setAccessLevelChecked(bool checked);
    /// Shows what comes of something that the user does. While an operation runs its own status
    /// comes back after passingTime.
    void setPassingStatus(const QString& text);
    static constexpr std::chrono::milliseconds passingTime{3000};
    /// Text of the first status panel; empty text shows "Status".
    void setStatusPanelTag(const QString& strData);

    // -- For the operations of the buttons
    void setBusy(bool busy);
    /// An operation of the manager has ended, whoever had begun it.
    void operationEnded();
    /// Shows the last error as the reason why a download does not begin.
    void refuseDownload();
    /// Enables or disables the port list, "Report Configuration" and "Download" together; "Erase
    /// Configuration" is disabled either way, until a row is marked again.
    void EnableControls(bool enable);
    /// As the view's members of that name; without a view the report counts as closed at once.
    void showFailureReport(const QString& text, const std::function<void()>& closed);
    void showNotice(const QString& text);

    /// What else the user must know, beside the work with the radio: that its record is not kept.
    /// Of a run that goes on it is told with its end.
    void setRemark(const QString& text);

    // -- IProtocolWindow
    [[nodiscard]] bool UIDisplay() const override { return m_uiDisplay; }
    void setStatusPanelStatus(const QString& strData) override;
    void setStatusPanelBaud(const QString& strData) override;
    void setFileNameTextBox(const QString& strData) override;
    void setProgressBar(std::int16_t intValue) override;
    void ResetProgessBar() override;
    void UpdateLabels(const colConfigurations& configurations, bool blnF1KeyRequired) override;

    // -- IDownloadWindow
    void setDownLoadManager(clsDLManager* objDLManager) override { m_DLManager = objDLManager; }
    void load() override;
    void show() override;
    void hide() override;
    [[nodiscard]] bool isVisible() const override { return m_visible; }
    void unload() override;
    void setUIDisplay(bool blnUI) override { m_uiDisplay = blnUI; }
    [[nodiscard]] bool PortExists(const QString& strPort) const override;
    void RefreshPorts() override;
    void SetPortCombo(const QString& strPort) override;
    [[nodiscard]] std::int32_t baudRateCount() const override;
    [[nodiscard]] QString baudRateEntry(std::int32_t index) const override;
    [[nodiscard]] std::int32_t baudRateIndex() const override { return m_baudRateIndex; }
    void setBaudRateIndex(std::int32_t index) override;
    [[nodiscard]] bool accessLevelChecked() const override { return m_accessLevelChecked; }
    [[nodiscard]] std::shared_ptr<ISerialControl> comSerialPort() const override
    {
        return m_control;
    }

private:
    void changed(WindowPart part);
    void endPassingStatus();
    void readPorts();
    void keepChosenPort();
    void takeFirstPort();

    const Platform& m_platform;
    ViewFactory m_makeView;
    std::shared_ptr<IWindowView> m_view;
    std::vector<IWindowObserver*> m_observers;
    std::shared_ptr<ISerialControl> m_control;
    clsDLManager* m_DLManager = nullptr;

    bool m_loaded = false;
    bool m_visible = false;
    bool m_uiDisplay = false;
    QString m_caption;
    QStringList m_ports;
    bool m_anyPort = false; ///< m_ports names ports
    int m_portIndex = -1;
    QString m_portText;
    bool m_portOwed = false; ///< the manager has not been given the port that is shown
    QList<IPortListing::Details> m_details;
    bool m_described = false;
    bool m_refreshDue = false;
    std::shared_ptr<void> m_portWatch;
    std::int32_t m_baudRateIndex = -1;
    bool m_accessLevelVisible = false;
    bool m_accessLevelChecked = false;
    QString m_tag;
    QString m_status;
    QString m_passingStatus; ///< shown instead of m_ownStatus while m_passingTimer runs
    QString m_ownStatus;
    int m_passingTimer = 0;
    QString m_baud;
    QString m_fileName;
    QString m_remark;
    int m_progress = 0;
    ConfigurationList m_configurations;
    bool m_blnBusy = false;
    bool m_controlsEnabled = true;
    bool m_eraseEnabled = false;
};

} // namespace fldc
