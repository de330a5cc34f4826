#pragma once

#include <QString>

#include <cstdint>

namespace fldc {

class colConfigurations;

/// What the protocol needs of the main window. Every member works while the window is hidden.
///
/// The operation holds the window for its whole life, but a client, or the end of the desktop's
/// session, may close it at any wait: the members then go on working and show nothing. A
/// conversation only writes here. What it reads is whether a user is present, because then a text
/// by reference comes back as it was given.
class IProtocolWindow {
public:
    virtual ~IProtocolWindow() = default;

    /// True when a user is present.
    [[nodiscard]] virtual bool UIDisplay() const = 0;
    /// Text of the status panel; empty text shows "Ready". The text shown goes to the download log.
    virtual void setStatusPanelStatus(const QString& strData) = 0;
    /// Text of the speed panel; empty text shows "Not connected".
    virtual void setStatusPanelBaud(const QString& strData) = 0;
    /// Name of the file being downloaded.
    virtual void setFileNameTextBox(const QString& strData) = 0;
    /// Progress, 0 to 100.
    virtual void setProgressBar(std::int16_t intValue) = 0;
    virtual void ResetProgessBar() = 0;
    /// Fills the configuration list. @p blnF1KeyRequired: of a radio that is power-cycled with its
    /// F1 key held only types and codes are shown.
    virtual void UpdateLabels(const colConfigurations& configurations, bool blnF1KeyRequired) = 0;
};

} // namespace fldc
