#include "platform/desktop/Compositing.h"

#include <QByteArray>
#include <QGuiApplication>
#include <cstdlib>
#include <memory>
#include <qguiapplication_platform.h>
#include <xcb/xcb.h>

namespace {

template <typename Reply> using Owned = std::unique_ptr<Reply, decltype(&std::free)>;

/// The compositor of the first screen owns a selection of this name.
bool hasCompositor(xcb_connection_t *connection)
{
    const QByteArray name = QByteArrayLiteral("_NET_WM_CM_S0");
    const auto nameCookie =
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.constData());
    const Owned<xcb_intern_atom_reply_t> selection(
        xcb_intern_atom_reply(connection, nameCookie, nullptr), &std::free);
    if (!selection)
        return false;
    const auto ownerCookie = xcb_get_selection_owner(connection, selection->atom);
    const Owned<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(connection, ownerCookie, nullptr), &std::free);
    return owner && owner->owner != XCB_WINDOW_NONE;
}

} // namespace

bool isCompositing()
{
    if (QGuiApplication::platformName() != QLatin1String("xcb"))
        return true;
    const auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 && x11->connection() && hasCompositor(x11->connection());
}
