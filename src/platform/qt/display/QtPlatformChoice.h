#pragma once

namespace fldc {

/// Call before the QApplication is made. Chooses the window system from DISPLAY and WAYLAND_DISPLAY
/// unless QT_QPA_PLATFORM names one: without a display, or when the display can't be reached, the
/// application runs offscreen instead of being aborted by Qt. Keeps Qt's remarks about that off
/// the standard error output (QT_LOGGING_RULES brings those of its categories back).
void chooseQtPlatform();

/// True when something listens where WAYLAND_DISPLAY and XDG_RUNTIME_DIR say that the display is,
/// or a connection was handed to the process (WAYLAND_SOCKET). The library that Qt uses can't be
/// kept from complaining on the standard error output otherwise.
[[nodiscard]] bool waylandReachable();

} // namespace fldc
