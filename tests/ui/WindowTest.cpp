#include "WindowTest.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QTest>
#include <QTreeWidget>

namespace fldc {

WindowTest::WindowTest()
{
    machine.settings.values[QStringLiteral("Debug")] = QStringLiteral("True");
}

WindowTest::~WindowTest()
{
    manager.reset();
    EXPECT_TRUE(window.expired()) << "somebody keeps the window";
    EXPECT_TRUE(dialogs.answers.empty()) << "a dialog that did not come";
    EXPECT_EQ(machine.line().rest(), QString());
}

void WindowTest::start()
{
    manager = std::make_unique<clsDLManager>(machine.platform, *this, *this);
    manager->SetUIMode(true);
    for (QWidget* each : QApplication::topLevelWidgets()) {
        if (each->objectName() == u"frmDownload" && each->isVisible())
            view = each;
    }
    ASSERT_NE(view, nullptr);
}

std::shared_ptr<IDownloadWindow> WindowTest::createWindow()
{
    auto made = std::make_shared<DownloadWindow>(
        machine.platform, frmDownload::factory(machine.platform, dialogs, help));
    window = made;
    return made;
}

void WindowTest::click(const char* name) const
{
    QTest::mouseClick(control<QAbstractButton>(name), Qt::LeftButton);
}

void WindowTest::clickRow(int row) const
{
    auto* list = control<QTreeWidget>("ListView1");
    const QRect place = list->visualItemRect(list->topLevelItem(row));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, place.topLeft() + QPoint(200, 4));
}

void WindowTest::play(std::initializer_list<const char*> pieces) const
{
    for (const char* piece : pieces)
        machine.line().play(piece);
}

void WindowTest::fill(const QStringList& codes, const char* erasable, std::int32_t status,
                      bool f1KeyRequired) const
{
    colConfigurations configurations;
    for (const QString& code : codes) {
        const auto added =
            configurations.Add(QStringLiteral("00410000000000000000") + QStringLiteral("0500"), {});
        added->setProductID(code);
        added->setComponentType(QStringLiteral("Radio Application"));
        added->setHardwareString(QStringLiteral("RVKB1"));
        added->setBlnCanBeErased(erasable[configurations.Count() - 1] == '1');
        added->setStatus(status);
    }
    window.lock()->UpdateLabels(configurations, f1KeyRequired);
}

QString WindowTest::status() const
{
    return control<QLabel>("panelStatus")->text();
}

QString WindowTest::enabled() const
{
    QStringList names;
    for (const char* name : {"cboPort", "cmdConfig", "cmdDownload", "cmdErase"}) {
        if (control(name)->isEnabled())
            names.append(QString::fromLatin1(name));
    }
    return names.join(u' ');
}

// Each choice of a port writes one "Ready" to the log.
int WindowTest::portChoices() const
{
    return static_cast<int>(
        machine.files.files.at(QStringLiteral("C:\\Tools\\0_Download.log")).content.count("Ready"));
}

} // namespace fldc
