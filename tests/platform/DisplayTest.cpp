#include "platform/qt/display/DesktopMessages.h"
#include "platform/qt/display/MessageChooser.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

#include <functional>

#include <gtest/gtest.h>

namespace fldc {
namespace {

using namespace Qt::StringLiterals;

/// Has the message box that comes up next treated by @p act.
void expectBox(const std::function<void(QMessageBox&)>& act)
{
    QTimer::singleShot(0, [act] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->windowTitle(), u"Kelvane Download Component"_s);
        EXPECT_EQ(box->text(), u"<b>Sure?</b>"_s);
        EXPECT_EQ(box->textFormat(), Qt::PlainText);
        act(*box);
    });
}

TEST(DesktopMessages, ShowsTextAsItIsAndOnlyYesIsYes)
{
    DesktopMessages messages(u"Kelvane Download Component"_s);
    const std::vector<std::pair<std::function<void(QMessageBox&)>, bool>> answers{
        {[](QMessageBox& box) { box.button(QMessageBox::Yes)->click(); }, true},
        {[](QMessageBox& box) { box.button(QMessageBox::No)->click(); }, false},
        {[](QMessageBox& box) { box.defaultButton()->click(); }, false},
        {[](QMessageBox& box) { box.close(); }, false},
        {[](QMessageBox& box) { delete &box; }, false}, // with its parent, say
    };
    for (const auto& [answer, expected] : answers) {
        expectBox(answer);
        EXPECT_EQ(messages.askYesNo(u"<b>Sure?</b>"_s), expected);
    }
    expectBox([](QMessageBox& box) {
        EXPECT_EQ(box.standardButtons(), QMessageBox::Ok);
        box.button(QMessageBox::Ok)->click();
    });
    messages.show(u"<b>Sure?</b>"_s, MessageKind::Error);
}

TEST(MessageChooser, ShowsAWindowOnlyWhereTheUserIsAtADisplay)
{
    struct Box final : IMessageBox {
        void show(const QString&, MessageKind) override { ++used; }
        bool askYesNo(const QString&) override { return ++used > 0; }
        int used = 0;
    };
    struct Row {
        bool display, window, terminal, asWindow;
    };
    for (const Row row : {Row{true, true, true, true}, Row{true, false, false, true},
                          Row{true, false, true, false}, Row{false, true, false, false}}) {
        Box desktop;
        Box terminal;
        MessageChooser chooser(desktop, terminal,
                               {[&] { return row.window; }, [&] { return row.display; },
                                [&] { return row.terminal; }});
        chooser.show(u"x"_s, MessageKind::Error);
        EXPECT_TRUE(chooser.askYesNo(u"x"_s));
        EXPECT_EQ(desktop.used, row.asWindow ? 2 : 0);
        EXPECT_EQ(terminal.used, row.asWindow ? 0 : 2);
    }
    EXPECT_FALSE(displayPresent()); // this program runs offscreen
}

} // namespace
} // namespace fldc

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
