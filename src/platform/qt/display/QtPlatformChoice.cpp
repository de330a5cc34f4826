#include "platform/qt/display/QtPlatformChoice.h"

#include "platform/qt/FileDescriptor.h"

#include <QByteArray>
#include <QLoggingCategory>
#include <QString>

#include <algorithm>
#include <array>
#include <cstring>

#include <sys/socket.h>
#include <sys/un.h>

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
    qputenv("QT_QPA_PLATFORM",
            platformList(waylandReachable(), !qEnvironmentVariableIsEmpty("DISPLAY")));
}

bool waylandReachable()
{
    if (!qEnvironmentVariableIsEmpty("WAYLAND_SOCKET"))
        return true;
    const QByteArray display = qgetenv("WAYLAND_DISPLAY");
    const QByteArray folder = qgetenv("XDG_RUNTIME_DIR");
    const QByteArray path = display.startsWith('/') ? display : folder + '/' + display;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (display.isEmpty() || !path.startsWith('/') ||
        static_cast<std::size_t>(path.size()) >= sizeof address.sun_path)
        return false;
    std::memcpy(address.sun_path, path.constData(), static_cast<std::size_t>(path.size()));
    const FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    // EAGAIN: many others want to connect, too.
    return ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) ==
               0 ||
           errno == EAGAIN;
}

} // namespace fldc
