#pragma once

#include "manager/IDownloadWindow.h"
#include "ui/logic/ConfigurationList.h"

#include <QString>
#include <QStringList>

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
    Configurations,
};

/// Something that shows the window's state: the main window on a desktop, a line on a terminal.
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
};

/// The main window without its widgets: everything that the manager and the protocol read and write
/// there, and the rules of the port list. A view shows it when there is a user; a switch-driven run
/// needs none.
class DownloadWindow final : public IDownloadWindow {
public:
    using ViewFactory = std::function<std::unique_ptr<IWindowView>(DownloadWindow&)>;

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
    [[nodiscard]] int portIndex() const { return m_portIndex; }
    [[nodiscard]] const QString& statusPanelTag() const { return m_tag; }
    [[nodiscard]] const QString& statusPanelStatus() const { return m_status; }
    [[nodiscard]] const QString& statusPanelBaud() const { return m_baud; }
    [[nodiscard]] const QString& fileName() const { return m_fileName; }
    [[nodiscard]] int progress() const { return m_progress; }
    [[nodiscard]] bool accessLevelVisible() const { return m_accessLevelVisible; }
    [[nodiscard]] ConfigurationList& configurations() { return m_configurations; }

    // -- What the user does
    /// Selects the port entry at @p index (from 0; -1 for text that is no entry). A change to an
    /// entry calls the manager's SetPort, exactly once; selecting the present one does nothing.
    void selectPort(int index);
    void setAccessLevelChecked(bool checked);
    /// Text of the first status panel; empty text shows "Status".
    void setStatusPanelTag(const QString& strData);

    // -- IProtocolWindow
    [[nodiscard]] bool UIDisplay() const override { return m_uiDisplay; }
    void setStatusPanelStatus(const QString& strData) override;
    void setStatusPanelBaud(const QString& strData) override;
    void setFileNameTextBox(const QString& strData) override;
    void setProgressBar(std::int16_t intValue) override;
    void ResetProgessBar() override;
    void UpdateLabels(const colConfigurations& configurations) override;

    // -- IDownloadWindow
    void setDownLoadManager(clsDLManager* objDLManager) override { m_DLManager = objDLManager; }
    void load() override;
    void show() override;
    void hide() override;
    [[nodiscard]] bool isVisible() const override { return m_visible; }
    void unload() override;
    void setUIDisplay(bool blnUI) override { m_uiDisplay = blnUI; }
    [[nodiscard]] bool PortExists(const QString& strPort) const override;
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

    const Platform& m_platform;
    ViewFactory m_makeView;
    std::unique_ptr<IWindowView> m_view;
    std::vector<IWindowObserver*> m_observers;
    std::shared_ptr<ISerialControl> m_control;
    clsDLManager* m_DLManager = nullptr;

    bool m_loaded = false;
    bool m_visible = false;
    bool m_uiDisplay = false;
    QString m_caption;
    QStringList m_ports;
    int m_portIndex = -1;
    std::int32_t m_baudRateIndex = -1;
    bool m_accessLevelVisible = false;
    bool m_accessLevelChecked = false;
    QString m_tag;
    QString m_status;
    QString m_baud;
    QString m_fileName;
    int m_progress = 0;
    ConfigurationList m_configurations;
};

} // namespace fldc
