#pragma once

#include <QLabel>
#include <QStatusBar>

class QToolButton;

namespace fldc {

/// A one-line text that ends in "…" when it does not fit; the whole text is then its tool tip.
class StatusPanel final : public QLabel {
    Q_OBJECT

public:
    explicit StatusPanel(QWidget* parent);
    /// Shows @p text at once, also when no event is served for a while.
    void showText(const QString& text);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    [[nodiscard]] QRect textRect() const;
    [[nodiscard]] QString fittingText() const;
};

/// The status bar of the main window: a tag sized to its text, the status, which takes what is
/// left, and the link speed.
class StatusBar final : public QStatusBar {
    Q_OBJECT

public:
    explicit StatusBar(QWidget* parent);

    /// A button between the status and the link speed.
    [[nodiscard]] QToolButton* addButton(const QString& name, const QString& text);

    void showTag(const QString& text);
    void showStatus(const QString& text) { m_status->showText(text); }
    void showBaud(const QString& text) { m_baud->showText(text); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    [[nodiscard]] StatusPanel* addPanel(const QString& name);
    void fitTexts();

    StatusPanel* m_tag;
    StatusPanel* m_status;
    StatusPanel* m_baud;
    QToolButton* m_button = nullptr;
};

} // namespace fldc
