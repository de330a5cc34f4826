#include "ui/frmIcon.h"

#include <QApplication>

#include <array>

// The pictures are in a static library: nothing else makes the linker keep them.
static void keepPictures()
{
    Q_INIT_RESOURCE(ui);
}

namespace fldc {

namespace {

QIcon iconOf(const QString& name, std::initializer_list<int> sizes)
{
    keepPictures();
    QIcon icon;
    for (const int size : sizes)
        icon.addFile(QStringLiteral(":/fldc/art/%1-%2.png").arg(name).arg(size), QSize(size, size));
    return icon;
}

} // namespace

QIcon frmIcon::icon()
{
    return iconOf(QStringLiteral("program"), {16, 32, 48, 64, 128, 256});
}

void frmIcon::useForApplication()
{
    QApplication::setWindowIcon(icon());
    QGuiApplication::setDesktopFileName(QStringLiteral("rv4100_fldc"));
}

QIcon frmIcon::picture(const QString& name)
{
    return name == u"help" ? iconOf(name, {13, 26}) : iconOf(name, {16, 32});
}

} // namespace fldc
