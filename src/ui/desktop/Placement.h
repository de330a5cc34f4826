#pragma once

#include <QPoint>
#include <QSize>

#include <memory>

class QLockFile;
class QWidget;

namespace fldc {

/// Size of a window of the program against its design, which is made for a desktop font of 9 pt:
/// larger with a larger font of the desktop's, and small enough for @p design (twips) with a frame
/// around it to fit what the screen of @p window leaves free.
[[nodiscard]] double fittingScale(const QWidget& window, QSize design);

/// Sets the scale of @p window, which everything that is placed in it in twips then has.
void setScale(QWidget& window, double scale);
/// Of the window that @p widget is in; 1 until it was set.
[[nodiscard]] double scaleOf(const QWidget& widget);

/// Moves @p window, frame included, to the middle of what its screen leaves free, @p offset pixels
/// to the right and down, and inside it in any case.
void centre(QWidget& window, int offset = 0);

/// A number for each main window that the user has open on this display, the lowest free one from
/// 0: windows that are in the middle of the screen would cover each other to the pixel.
class WindowNumber {
public:
    WindowNumber();
    ~WindowNumber();
    [[nodiscard]] int value() const { return m_value; }

private:
    std::unique_ptr<QLockFile> m_lock;
    int m_value = 0;
};

} // namespace fldc
