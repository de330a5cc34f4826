#pragma once

#include <QIcon>

namespace fldc {

/// Carries the program's icon, which is on no window of its own, and the pictures of the others.
class frmIcon {
public:
    /// The program's icon in six sizes, 16 to 256 pixels.
    [[nodiscard]] static QIcon icon();
    /// Makes it the icon of the application: of windows that have none, and in the desktop's lists
    /// through the desktop entry.
    static void useForApplication();

    /// One of the small pictures by its name ("help"), for normal and for dense screens.
    [[nodiscard]] static QIcon picture(const QString& name);
};

} // namespace fldc
