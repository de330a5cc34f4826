#pragma once

#include <QProgressBar>
#include <QTimer>

namespace fldc {

/// The progress bar with a text of the present operation in it. While something is done that has no
/// measure, a piece of light runs along its lower edge: range and value stay what they are. Screen
/// readers are told every quarter.
class TransferBar final : public QProgressBar {
    Q_OBJECT

public:
    explicit TransferBar(QWidget* parent);

    /// Empty: the value alone.
    void showText(const QString& text);
    void setAlive(bool alive);
    [[nodiscard]] bool alive() const { return m_beat.isActive(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void tellMilestone(int value);

    int m_told = 0; ///< to screen readers, in per cent
    QTimer m_beat;
    int m_position = 0; ///< of the light, in hundredths of the width
};

} // namespace fldc
