#include "ui/session/TransferBar.h"

#include <QPainter>

#include <chrono>
#include <utility>

namespace fldc {

using namespace std::chrono_literals;

namespace {

constexpr auto beat = 80ms;
constexpr int whole = 100;
constexpr int step = 2;
constexpr int lightWidth = 12;
constexpr int lightHeight = 2;
constexpr int milestone = 25;

} // namespace

TransferBar::TransferBar(QWidget* parent) : QProgressBar(parent)
{
    setRange(0, whole);
    connect(&m_beat, &QTimer::timeout, this, [this] {
        m_position = (m_position + step) % (whole + lightWidth);
        update();
    });
    connect(this, &QProgressBar::valueChanged, this, &TransferBar::tellMilestone);
}

void TransferBar::tellMilestone(int value)
{
    const int reached = value / milestone * milestone;
    if (std::exchange(m_told, reached) != reached)
        setAccessibleName(reached == 0 ? tr("Progress") : tr("Progress, %1 %").arg(reached));
}

// At once, like the status panels: nothing may be served for a while.
void TransferBar::showText(const QString& text)
{
    const QString format = text.isEmpty() ? QStringLiteral("%p%") : text;
    if (format == this->format())
        return;
    setFormat(format);
    repaint();
}

void TransferBar::setAlive(bool alive)
{
    if (alive == m_beat.isActive())
        return;
    m_position = 0;
    if (alive)
        m_beat.start(beat);
    else
        m_beat.stop();
    update();
}

void TransferBar::paintEvent(QPaintEvent* event)
{
    QProgressBar::paintEvent(event);
    if (!alive())
        return;
    QPainter painter(this);
    const QRect inside = rect().adjusted(1, 1, -1, -1);
    const QRect light((m_position - lightWidth) * inside.width() / whole + inside.left(),
                      inside.bottom() - lightHeight + 1, lightWidth * inside.width() / whole,
                      lightHeight);
    painter.fillRect(light & inside, palette().color(QPalette::Highlight));
}

} // namespace fldc
