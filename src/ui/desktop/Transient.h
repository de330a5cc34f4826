#pragma once

class QWidget;

namespace fldc {

/// The program's main window on the screen, or null.
[[nodiscard]] QWidget* mainWindow();

/// Makes @p dialog, not yet shown, stay above the main window whatever is active, or above the
/// modal dialog there is, which would take its clicks away otherwise.
void keepAboveMainWindow(QWidget& dialog);

/// Keeps @p dialog out of the desktop's task bar and pager (the properties of X11's window
/// managers; elsewhere nothing happens). They last until it is hidden: call it before each showing.
void keepOffTaskBar(QWidget& dialog);

} // namespace fldc
