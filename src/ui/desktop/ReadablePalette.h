#pragma once

#include <QObject>

class QColor;

namespace fldc {

/// Keeps what is written on the desktop's highlight colour (a filled progress bar, a chosen row)
/// readable, with a contrast of at least 4.5 (WCAG 2.1, 1.4.3) and no other colour than that takes:
/// some themes put white on a light blue. Holds for the application while it lives, and
/// when the desktop's colours change.
class ReadablePalette final : public QObject {
    Q_OBJECT

public:
    explicit ReadablePalette(QObject* parent = nullptr);

    bool eventFilter(QObject* watched, QEvent* event) override;
};

/// 1 to 21: WCAG 2.1, definitions.
[[nodiscard]] double contrastOf(const QColor& one, const QColor& other);

} // namespace fldc
