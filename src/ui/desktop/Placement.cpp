#include "ui/desktop/Placement.h"

#include <QApplication>
#include <QFontInfo>
#include <QLockFile>
#include <QScreen>
#include <QStandardPaths>
#include <QVariant>
#include <QWidget>

#include <algorithm>

namespace fldc {

namespace {

constexpr auto scaleProperty = "fldcScale";
constexpr double designFontPoints = 9;
constexpr double twipsPerInch = 1440;
// Room for a title bar and borders, more than the desktops' themes take; pixels.
constexpr QSize roomForFrame(16, 42);
constexpr double smallestScale = 0.4;
constexpr int mostWindows = 16;

} // namespace

double fittingScale(const QWidget& window, QSize design)
{
    const double wanted =
        std::max(1.0, QFontInfo(QApplication::font()).pointSizeF() / designFontPoints);
    const QSize room = window.screen()->availableGeometry().size() - roomForFrame;
    const double across = room.width() * twipsPerInch / (design.width() * window.logicalDpiX());
    const double down = room.height() * twipsPerInch / (design.height() * window.logicalDpiY());
    return std::max(std::min({wanted, across, down}), smallestScale);
}

void setScale(QWidget& window, double scale)
{
    window.setProperty(scaleProperty, scale);
}

double scaleOf(const QWidget& widget)
{
    const QVariant scale = widget.window()->property(scaleProperty);
    return scale.isValid() ? scale.toDouble() : 1;
}

void centre(QWidget& window, int offset)
{
    const QRect available = window.screen()->availableGeometry();
    QRect place = window.frameGeometry();
    place.moveCenter(available.center() + QPoint(offset, offset));
    place.moveLeft(std::clamp(place.left(), available.left(),
                              std::max(available.left(), available.right() - place.width() + 1)));
    place.moveTop(std::clamp(place.top(), available.top(),
                             std::max(available.top(), available.bottom() - place.height() + 1)));
    window.move(place.topLeft());
}

WindowNumber::WindowNumber()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    const QString display =
        qEnvironmentVariable("DISPLAY") + qEnvironmentVariable("WAYLAND_DISPLAY");
    const QString path = folder + QStringLiteral("/rv4100_fldc-%1-%2.lock");
    for (m_value = 0; m_value < mostWindows; ++m_value) {
        m_lock = std::make_unique<QLockFile>(
            path.arg(QString(display).replace(u'/', u'_')).arg(m_value));
        m_lock->setStaleLockTime(0);
        if (m_lock->tryLock() || m_lock->error() != QLockFile::LockFailedError)
            return;
    }
    m_value = 0;
}

WindowNumber::~WindowNumber() = default;

} // namespace fldc
