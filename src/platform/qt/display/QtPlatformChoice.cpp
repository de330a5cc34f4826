#include "platform/qt/display/QtPlatformChoice.h"

#include <QByteArray>
#include <QLoggingCategory>
#include <QString>

#include <algorithm>
#include <array>

namespace fldc {

namespace {

QtMessageHandler nextHandler = nullptr;

/// Drops the remarks that a run without a desktop always makes and that carry no category.
void dropRemarks(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    static constexpr std::array remarks{
        QLatin1StringView("QStandardPaths: XDG_RUNTIME_DIR not set"),
        QLatin1StringView("This plugin does not support propagateSizeHints"),
    };
    if (type == QtWarningMsg &&
        std::ranges::any_of(remarks, [&](auto remark) { return text.startsWith(remark); }))
        return;
    if (nextHandler != nullptr)
        nextHandler(type, context, text);
}

/// Qt tries the platforms of a list from left to right.
QByteArray platformList(bool wayland, bool x11)
{
    QByteArray list;
    if (wayland)
        list += "wayland;";
    if (x11)
        list += "xcb;";
    return list + "offscreen";
}

} // namespace

void chooseQtPlatform()
{
    if (nextHandler == nullptr)
        nextHandler = qInstallMessageHandler(dropRemarks);
    if (!qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        return;
    QLoggingCategory::setFilterRules(QStringLiteral("qt.qpa.*=false"));
    qputenv("QT_QPA_PLATFORM", platformList(!qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"),
                                            !qEnvironmentVariableIsEmpty("DISPLAY")));
}

} // namespace fldc
