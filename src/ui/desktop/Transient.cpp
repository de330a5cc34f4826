#include "ui/desktop/Transient.h"

#include <QApplication>
#include <QWidget>
#include <QWindow>

#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>

#include <xcb/xcb.h>

namespace fldc {

namespace {

xcb_atom_t atom(xcb_connection_t* connection, const char* name)
{
    const auto cookie =
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
        xcb_intern_atom_reply(connection, cookie, nullptr), &std::free);
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

} // namespace

QWidget* mainWindow()
{
    for (QWidget* each : QApplication::topLevelWidgets()) {
        if (each->objectName() == u"frmDownload" && each->isVisible())
            return each;
    }
    return nullptr;
}

void keepAboveMainWindow(QWidget& dialog)
{
    QWidget* modal = QApplication::activeModalWidget();
    QWidget* owner = modal != nullptr ? modal : mainWindow();
    dialog.winId();
    dialog.windowHandle()->setTransientParent(owner == nullptr ? nullptr : owner->windowHandle());
}

void keepOffTaskBar(QWidget& dialog)
{
    // The offscreen platform says that it has the interface, too, and fails inside it.
    const auto* x11 = QGuiApplication::platformName() == u"xcb"
                          ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>()
                          : nullptr;
    if (x11 == nullptr)
        return;
    xcb_connection_t* connection = x11->connection();
    const std::array<xcb_atom_t, 2> states{atom(connection, "_NET_WM_STATE_SKIP_TASKBAR"),
                                           atom(connection, "_NET_WM_STATE_SKIP_PAGER")};
    xcb_change_property(
        connection, XCB_PROP_MODE_REPLACE, static_cast<xcb_window_t>(dialog.winId()),
        atom(connection, "_NET_WM_STATE"), XCB_ATOM_ATOM, 32, states.size(), states.data());
}

} // namespace fldc
