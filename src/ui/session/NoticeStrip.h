#pragma once

#include "ui/logic/session/Notice.h"

#include <QFrame>

class QLabel;
class QPushButton;

namespace fldc {

class StatusPanel;

/// How the last run ended, in two lines that stay until the next one begins and block nothing.
/// Hidden while there is none.
class NoticeStrip final : public QFrame {
    Q_OBJECT

public:
    explicit NoticeStrip(QWidget* parent);

    void showNotice(const Notice& notice);

protected:
    void changeEvent(QEvent* event) override;

Q_SIGNALS:
    void detailsWanted();
    void copyWanted();

private:
    QPushButton* makeButton(const QString& name, const QString& text);
    void fitFont();

    QLabel* m_sign;
    StatusPanel* m_headline;
    StatusPanel* m_next;
};

} // namespace fldc
