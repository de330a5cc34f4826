#pragma once

#include "ui/Twips.h"

#include <QLatin1StringView>

#include <algorithm>
#include <array>
#include <cstddef>

namespace fldc {

/// The controls of the main window, in tab order.
enum class Control : std::size_t {
    chkAccessLevel,
    Label1,
    cboPort,
    Label2,
    cboBaudRate,
    cmdConfig,
    cmdErase,
    cmdDownload,
    cmdHelp,
    fraConfiguration,
    ListView1,
    cmdSaveDetails,
    txtCurrentDownload,
    lblProgress,
    prgDownloadProgress,
    lblCurrentDownload,
    stsStatus,
    cmdCancel,
    noticeStrip,
};

struct ControlPosition {
    Control control;
    QLatin1StringView name; ///< the widget's object name
    TwipsRect place;        ///< in the client area, or in fraConfiguration
    bool inFrame = false;
};

inline constexpr int clientWidth = 9120;
inline constexpr int clientHeight = 7935;

inline constexpr std::array controlPositions{
    ControlPosition{
        Control::chkAccessLevel, QLatin1StringView("chkAccessLevel"), {6240, 6600, 2295, 255}},
    ControlPosition{Control::Label1, QLatin1StringView("Label1"), {360, 6600, 495, 255}},
    ControlPosition{Control::cboPort, QLatin1StringView("cboPort"), {360, 6960, 1695, 315}},
    ControlPosition{Control::Label2, QLatin1StringView("Label2"), {2160, 6600, 855, 255}},
    ControlPosition{Control::cboBaudRate, QLatin1StringView("cboBaudRate"), {2160, 6960, 975, 315}},
    ControlPosition{Control::cmdConfig, QLatin1StringView("cmdConfig"), {3240, 6960, 1695, 375}},
    ControlPosition{Control::cmdErase, QLatin1StringView("cmdErase"), {5040, 6960, 1695, 375}},
    ControlPosition{
        Control::cmdDownload, QLatin1StringView("cmdDownload"), {6960, 6960, 1695, 375}},
    ControlPosition{Control::cmdHelp, QLatin1StringView("cmdHelp"), {8400, 0, 375, 375}},
    ControlPosition{
        Control::fraConfiguration, QLatin1StringView("fraConfiguration"), {360, 600, 8415, 4455}},
    ControlPosition{
        Control::ListView1, QLatin1StringView("ListView1"), {120, 480, 8175, 3135}, true},
    ControlPosition{Control::cmdSaveDetails,
                    QLatin1StringView("cmdSaveDetails"),
                    {6720, 3840, 1335, 375},
                    true},
    ControlPosition{Control::txtCurrentDownload,
                    QLatin1StringView("txtCurrentDownload"),
                    {360, 5400, 7455, 285}},
    ControlPosition{Control::lblProgress, QLatin1StringView("lblProgress"), {360, 5760, 5415, 255}},
    ControlPosition{Control::prgDownloadProgress,
                    QLatin1StringView("prgDownloadProgress"),
                    {360, 6000, 7455, 255}},
    ControlPosition{Control::lblCurrentDownload,
                    QLatin1StringView("lblCurrentDownload"),
                    {360, 5160, 5415, 255}},
    ControlPosition{Control::stsStatus, QLatin1StringView("stsStatus"), {0, 7650, 9120, 285}},
    ControlPosition{Control::cmdCancel, QLatin1StringView("cmdCancel"), {7920, 5940, 855, 375}},
    ControlPosition{Control::noticeStrip, QLatin1StringView("noticeStrip"), {360, 30, 7920, 540}},
};

[[nodiscard]] constexpr const ControlPosition& positionOf(Control control)
{
    return controlPositions[static_cast<std::size_t>(control)];
}

/// Width of the configuration list in twips.
inline constexpr int listWidth = positionOf(Control::ListView1).place.width;

static_assert(
    [] {
        for (std::size_t i = 0; i < controlPositions.size(); ++i) {
            const ControlPosition& each = controlPositions[i];
            const TwipsRect frame = positionOf(Control::fraConfiguration).place;
            const int width = each.inFrame ? frame.width : clientWidth;
            const int height = each.inFrame ? frame.height : clientHeight;
            if (each.control != static_cast<Control>(i) ||
                each.place.left + each.place.width > width ||
                each.place.top + each.place.height > height)
                return false;
        }
        return true;
    }(),
    "the controls stand in order and inside what holds them");

} // namespace fldc
