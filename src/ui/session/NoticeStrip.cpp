#include "ui/session/NoticeStrip.h"

#include "ui/StatusBar.h"

#include <QAccessible>
#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>

#include <array>

namespace fldc {

namespace {

constexpr int signPixels = 24;
constexpr int noticeButtonMargin = 14;

// A colour alone would not tell them apart.
constexpr std::array signs{QStyle::SP_DialogApplyButton, QStyle::SP_MessageBoxWarning,
                           QStyle::SP_MessageBoxCritical};

} // namespace

NoticeStrip::NoticeStrip(QWidget* parent)
    : QFrame(parent), m_sign(new QLabel(this)), m_headline(new StatusPanel(this)),
      m_next(new StatusPanel(this))
{
    setObjectName(QStringLiteral("noticeStrip"));
    setFrameStyle(QFrame::NoFrame);
    m_headline->setObjectName(QStringLiteral("noticeHeadline"));
    m_next->setObjectName(QStringLiteral("noticeNext"));
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setVerticalSpacing(0);
    grid->setHorizontalSpacing(4);
    grid->setColumnStretch(1, 1);
    grid->addWidget(m_sign, 0, 0, 2, 1);
    int row = 0;
    for (StatusPanel* line : {m_headline, m_next}) {
        line->setFrameStyle(QFrame::NoFrame);
        line->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
        grid->addWidget(line, row++, 1);
    }
    QPushButton* details = makeButton(QStringLiteral("cmdNoticeDetails"), tr("Details"));
    details->setToolTip(tr("Every file, the state of the radio and what to do next"));
    QPushButton* copy = makeButton(QStringLiteral("cmdNoticeCopy"), tr("Copy"));
    copy->setToolTip(tr("Put this on the clipboard for a support mail, with version, port and "
                        "codes"));
    grid->addWidget(details, 0, 2, 2, 1, Qt::AlignVCenter);
    grid->addWidget(copy, 0, 3, 2, 1, Qt::AlignVCenter);
    connect(details, &QPushButton::clicked, this, &NoticeStrip::detailsWanted);
    connect(copy, &QPushButton::clicked, this, &NoticeStrip::copyWanted);
    fitFont();
    hide();
}

void NoticeStrip::changeEvent(QEvent* event)
{
    QFrame::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        fitFont();
}

void NoticeStrip::fitFont()
{
    QFont bold = font();
    bold.setBold(true);
    m_headline->setFont(bold);
    for (QPushButton* button : findChildren<QPushButton*>())
        button->setFixedSize(fontMetrics().horizontalAdvance(button->text()) + noticeButtonMargin,
                             fontMetrics().height() + noticeButtonMargin / 2);
}

QPushButton* NoticeStrip::makeButton(const QString& name, const QString& text)
{
    auto* button = new QPushButton(text, this);
    button->setObjectName(name);
    return button;
}

void NoticeStrip::showNotice(const Notice& notice)
{
    const auto sign = signs.at(static_cast<std::size_t>(notice.kind));
    m_sign->setPixmap(style()->standardIcon(sign, nullptr, this).pixmap(signPixels));
    show();
    m_headline->showText(notice.headline);
    m_next->showText(notice.next);
    setAccessibleName(notice.text());
    QAccessibleEvent told(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&told);
}

} // namespace fldc
