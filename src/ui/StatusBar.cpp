#include "ui/StatusBar.h"

#include "ui/Twips.h"

#include <QEvent>
#include <QLayout>
#include <QPainter>
#include <QStyle>
#include <QStyleOption>
#include <QToolButton>

#include <algorithm>

namespace fldc {

namespace {

// Twips.
constexpr int smallestTagWidth = 700;
constexpr int baudWidth = 1440;

constexpr int panelMargin = 3;
constexpr int buttonMargin = 12;

} // namespace

StatusPanel::StatusPanel(QWidget* parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Ignored);
    setMinimumHeight(1);
}

void StatusPanel::showText(const QString& newText)
{
    if (newText == text())
        return;
    setText(newText);
    setToolTip(fittingText() == newText ? QString() : newText);
    repaint();
}

QRect StatusPanel::textRect() const
{
    // The whole height: some fonts need it.
    return rect().adjusted(frameWidth() + panelMargin, 0, -frameWidth() - panelMargin, 0);
}

QString StatusPanel::fittingText() const
{
    return fontMetrics().elidedText(text(), Qt::ElideRight, textRect().width());
}

void StatusPanel::paintEvent(QPaintEvent* event)
{
    QFrame::paintEvent(event);
    QPainter painter(this);
    style()->drawItemText(&painter, textRect(), Qt::AlignLeft | Qt::AlignVCenter, palette(),
                          isEnabled(), fittingText(), foregroundRole());
}

void StatusPanel::resizeEvent(QResizeEvent* event)
{
    QLabel::resizeEvent(event);
    setToolTip(fittingText() == text() ? QString() : text());
}

StatusBar::StatusBar(QWidget* parent)
    : QStatusBar(parent), m_tag(addPanel(QStringLiteral("panelTag"))),
      m_status(addPanel(QStringLiteral("panelStatus"))),
      m_baud(addPanel(QStringLiteral("panelBaud")))
{
    setSizeGripEnabled(false);
    addWidget(m_tag);
    addWidget(m_status, 1);
    addWidget(m_baud);
    m_status->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
}

// A name for screen readers would be read instead of the text.
StatusPanel* StatusBar::addPanel(const QString& name)
{
    auto* panel = new StatusPanel(this);
    panel->setObjectName(name);
    return panel;
}

QToolButton* StatusBar::addButton(const QString& name, const QString& text)
{
    constexpr int place = 2;
    m_button = new QToolButton(this);
    m_button->setObjectName(name);
    m_button->setText(text);
    m_button->setMinimumHeight(1);
    m_button->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Ignored);
    insertWidget(place, m_button);
    fitTexts();
    return m_button;
}

// Without the toolkit's frames around the panels, which have their own. A style sheet that says so
// would keep the panels' colours when the desktop's change.
void StatusBar::paintEvent(QPaintEvent* /*event*/)
{
    QStyleOption option;
    option.initFrom(this);
    QPainter painter(this);
    style()->drawPrimitive(QStyle::PE_PanelStatusBar, &option, &painter, this);
}

// The toolkit leaves room above and below, which a line of text needs itself.
void StatusBar::resizeEvent(QResizeEvent* event)
{
    for (int i = 0; i < layout()->count(); ++i) {
        if (QSpacerItem* room = layout()->itemAt(i)->spacerItem())
            room->changeSize(0, 0);
    }
    layout()->invalidate();
    m_baud->setFixedWidth(widthInPixels(baudWidth, *this));
    fitTexts();
    QStatusBar::resizeEvent(event);
}

void StatusBar::changeEvent(QEvent* event)
{
    QStatusBar::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        fitTexts();
}

void StatusBar::fitTexts()
{
    const int frame = 2 * (m_tag->frameWidth() + panelMargin);
    m_tag->setFixedWidth(std::max(widthInPixels(smallestTagWidth, *this),
                                  fontMetrics().horizontalAdvance(m_tag->text()) + frame));
    if (m_button == nullptr)
        return;
    m_button->setFont(font()); // the toolkit has another one for such buttons
    const QString text = m_button->text().remove(u'&');
    m_button->setFixedWidth(fontMetrics().horizontalAdvance(text) + buttonMargin);
}

void StatusBar::showTag(const QString& text)
{
    m_tag->showText(text);
    fitTexts();
}

} // namespace fldc
