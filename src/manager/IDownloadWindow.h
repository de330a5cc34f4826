#pragma once

#include "protocol/IProtocolWindow.h"

#include <cstdint>
#include <memory>

namespace fldc {

class ISerialControl;
class clsDLManager;

/// What the manager needs of the main window beyond what the protocol does. The window works while
/// it is hidden, and its members stay callable after it was unloaded.
///
/// Manager and window know each other. The manager owns the window; the window holds a plain
/// pointer back, which unload() clears on both sides. Whatever closes a window therefore goes
/// through unload(), also the end of the desktop's session in the middle of an operation.
class IDownloadWindow : public IProtocolWindow {
public:
    /// The manager that owns the window; nullptr lets go of it. Must be set before load().
    virtual void setDownLoadManager(clsDLManager* objDLManager) = 0;
    /// Runs the load steps once: lists the ports and selects the first, which calls the manager's
    /// SetPort.
    virtual void load() = 0;
    /// Shows the window, not modal. Throws PlatformFailure, ModalWindowOpen (401) when a modal
    /// window is open.
    virtual void show() = 0;
    virtual void hide() = 0;
    [[nodiscard]] virtual bool isVisible() const = 0;
    /// Closes the window for good; it lets go of the manager.
    virtual void unload() = 0;

    virtual void setUIDisplay(bool blnUI) = 0;
    /// True when the port list has an entry for @p strPort: a number is compared with the entries'
    /// port numbers, other text with their texts. Throws PlatformFailure (invalid argument) when a
    /// number is looked for among entries that name no port.
    [[nodiscard]] virtual bool PortExists(const QString& strPort) const = 0;
    /// Reads the port list again. The chosen entry stays; the manager is not called.
    virtual void RefreshPorts() = 0;
    /// Selects the first entry that matches by the same rule; none: no change.
    virtual void SetPortCombo(const QString& strPort) = 0;

    // The baud-rate list, entries counted from 0.
    [[nodiscard]] virtual std::int32_t baudRateCount() const = 0;
    [[nodiscard]] virtual QString baudRateEntry(std::int32_t index) const = 0;
    /// Selected entry; -1 when none is.
    [[nodiscard]] virtual std::int32_t baudRateIndex() const = 0;
    virtual void setBaudRateIndex(std::int32_t index) = 0;

    /// Whether "Allow Unprotected Upgrade" is checked.
    [[nodiscard]] virtual bool accessLevelChecked() const = 0;
    /// The window's serial-communication control.
    [[nodiscard]] virtual std::shared_ptr<ISerialControl> comSerialPort() const = 0;
};

/// Start-up decides which windows there are: with widgets, without, or, in tests, recorded ones.
/// The factory outlives the managers that use it.
class IDownloadWindowFactory {
public:
    virtual ~IDownloadWindowFactory() = default;
    /// A new window, not loaded and not shown.
    [[nodiscard]] virtual std::shared_ptr<IDownloadWindow> createWindow() = 0;
};

} // namespace fldc
