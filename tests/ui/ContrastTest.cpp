#include "WindowTest.h"
#include "ui/desktop/ReadablePalette.h"
#include "ui/desktop/VisibleBorders.h"
#include "ui/frmReportDialog.h"
#include "ui/session/PlanWindow.h"

#include <QApplication>
#include <QCheckBox>
#include <QImage>
#include <QProgressBar>
#include <QStyle>
#include <QTest>
#include <QTreeWidget>

#include <algorithm>
#include <array>
#include <map>

namespace fldc {
namespace {

constexpr double wanted = 4.5; // WCAG 2.1, 1.4.3

/// Between the background, the colour of most pixels, and the pixel that differs most.
double contrastIn(const QImage& picture)
{
    std::map<QRgb, int> counts;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            ++counts[picture.pixel(x, y)];
    const auto ground =
        std::ranges::max_element(counts, {}, [](const auto& each) { return each.second; });
    double most = 1;
    for (const auto& [pixel, count] : counts)
        most = std::max(most, contrastOf(QColor(pixel), QColor(ground->first)));
    return most;
}

/// Where a widget shows text, in its own coordinates, without its frame.
QList<QRect> textsOf(const QWidget& widget)
{
    const QRect inside = widget.rect().adjusted(5, 3, -5, -3);
    if (qobject_cast<const QProgressBar*>(&widget) != nullptr) {
        const int middle = inside.center().x(); // the text stands on both sides of the bar's end
        return {inside.adjusted(0, 0, middle - inside.right(), 0),
                inside.adjusted(middle, 0, 0, 0)};
    }
    if (qobject_cast<const QCheckBox*>(&widget) != nullptr)
        return {inside.adjusted(inside.height(), 0, 0, 0)};
    return widget.property("text").toString().isEmpty() ? QList<QRect>() : QList{inside};
}

QList<QRect> cellsOf(const QTreeWidget& list)
{
    QList<QRect> cells;
    for (int row = 0; row < list.topLevelItemCount(); ++row) {
        const QRect line = list.visualItemRect(list.topLevelItem(row));
        for (int column = 1; column < 3; ++column)
            cells.append({list.columnViewportPosition(column) + 14, line.top() + 1,
                          list.columnWidth(column) - 18, line.height() - 2});
    }
    return cells;
}

void check(const QImage& picture, const QList<QRect>& places, const QPoint& at, const QString& what)
{
    for (const QRect& place : places) {
        const QRect shown = place.translated(at) & picture.rect();
        EXPECT_GE(contrastIn(picture.copy(shown)), wanted)
            << qPrintable(what) << ' ' << place.x() << ' ' << place.y();
    }
}

/// Every text of a window as it is shown; disabled controls are exempt.
void checkWindow(QWidget& window, const QString& what)
{
    const QImage picture = window.grab().toImage().convertToFormat(QImage::Format_RGB32);
    const auto widgets = window.findChildren<QWidget*>();
    for (QWidget* each : widgets) {
        if (!each->isVisibleTo(&window) || !each->isEnabled() || each->visibleRegion().isEmpty())
            continue;
        const QPoint at = each->mapTo(&window, QPoint(0, 0));
        check(picture, textsOf(*each), at, what + u' ' + each->objectName());
        if (const auto* list = qobject_cast<QTreeWidget*>(each))
            check(picture, cellsOf(*list), list->viewport()->mapTo(&window, QPoint(0, 0)),
                  what + u' ' + each->objectName());
    }
}

QPalette paletteOf(const std::array<const char*, 6>& colours)
{
    using Role = QPalette::ColorRole;
    const std::array<QColor, 6> of{QColor(colours[0]), QColor(colours[1]), QColor(colours[2]),
                                   QColor(colours[3]), QColor(colours[4]), QColor(colours[5])};
    QPalette palette(of[2], of[0]); // what is derived from button and window
    for (const auto& [role, index] : {std::pair{Role::Window, 0},
                                      {Role::Base, 1},
                                      {Role::Button, 2},
                                      {Role::WindowText, 3},
                                      {Role::Text, 3},
                                      {Role::ButtonText, 3},
                                      {Role::Highlight, 4},
                                      {Role::HighlightedText, 5},
                                      {Role::AlternateBase, 0},
                                      {Role::ToolTipBase, 1},
                                      {Role::ToolTipText, 3},
                                      {Role::PlaceholderText, 3}})
        palette.setColor(role, of[static_cast<std::size_t>(index)]);
    return palette;
}

class ContrastTest : public WindowTest {
protected:
    /// Every window of the program, with @p status of the second component.
    void checkAll(const QString& what, int status)
    {
        auto* list = control<QTreeWidget>("ListView1");
        fill({QStringLiteral("RVKB1-1"), QStringLiteral("JHA2F-1")}, "01", status);
        list->setCurrentItem(list->topLevelItem(1));
        window.lock()->setStatusPanelStatus(QStringLiteral("Downloading data..."));
        for (const int percent : {0, 75}) {
            window.lock()->setProgressBar(static_cast<std::int16_t>(percent));
            checkWindow(*view, what);
        }
        frmReportDialog report(view);
        report.setReport(QStringLiteral("a.srec"));
        report.show();
        checkWindow(report, what + QStringLiteral(" report"));
        PlanWindow plan(machine.files, view);
        plan.refresh(*window.lock(), {QStringLiteral("b.srec: too short")});
        plan.show();
        checkWindow(plan, what + QStringLiteral(" plan"));
    }
};

/// What has no other edge than a border.
void checkBorders(const QWidget& window)
{
    for (const auto& [name, wide] : {std::pair{"chkAccessLevel", 14},
                                     {"cboPort", 4},
                                     {"txtCurrentDownload", 4},
                                     {"cmdDownload", 4}}) {
        const QRect edge(0, 0, wide, window.findChild<QWidget*>(QLatin1String(name))->height());
        EXPECT_GE(contrastIn(window.findChild<QWidget*>(QLatin1String(name))->grab(edge).toImage()),
                  3)
            << name; // WCAG 2.1, 1.4.11
    }
}

TEST_F(ContrastTest, EveryTextCanBeReadInEveryPaletteAlsoWhenItChanges)
{
    const QPalette before = QApplication::palette();
    const QString style = QApplication::style()->name();
    VisibleBorders::install();
    const ReadablePalette readable;
    start();
    const auto change = [&](const QPalette& palette) {
        QApplication::setPalette(palette);
        return QTest::qWaitFor([&] { return view->palette().window() == palette.window(); });
    };
    EXPECT_TRUE(
        change(paletteOf({"#353535", "#1e1e1e", "#404040", "#ffffff", "#2a82da", "#ffffff"})));
    checkAll(QStringLiteral("dark"), 7);
    EXPECT_TRUE(
        change(paletteOf({"#000000", "#000000", "#000000", "#ffff00", "#00ffff", "#000000"})));
    checkAll(QStringLiteral("high contrast"), 7);
    checkBorders(*view);
    EXPECT_TRUE(change(QApplication::style()->standardPalette()));
    checkAll(QStringLiteral("light"), 0); // the red of a fault is what people know, and has a mark
    EXPECT_TRUE(change(before));
    QApplication::setStyle(style);
}

} // namespace
} // namespace fldc
