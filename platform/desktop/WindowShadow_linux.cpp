#include "platform/desktop/WindowShadow.h"

#include "platform/desktop/Compositing.h"

#include <QByteArray>
#include <QGuiApplication>
#include <QWidget>
#include <array>
#include <cstdlib>
#include <memory>
#include <qguiapplication_platform.h>
#include <xcb/shape.h>
#include <xcb/xcb.h>

namespace {

xcb_connection_t *x11Connection()
{
    const auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

xcb_atom_t atomNamed(xcb_connection_t *connection, const QByteArray &name)
{
    const auto cookie =
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.constData());
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
        xcb_intern_atom_reply(connection, cookie, nullptr), &std::free);
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

} // namespace

bool canAnnounceShadow()
{
    return QGuiApplication::platformName() == QLatin1String("xcb") && x11Connection() &&
           isCompositing();
}

void announceShadow(const QWidget &window, QMargins shadow)
{
    xcb_connection_t *const connection = x11Connection();
    if (!connection)
        return;
    const auto id = static_cast<xcb_window_t>(window.effectiveWinId());
    const qreal scale = window.devicePixelRatioF();
    const QMargins pixels = shadow * scale;
    const std::array<std::uint32_t, 4> extents{
        static_cast<std::uint32_t>(pixels.left()), static_cast<std::uint32_t>(pixels.right()),
        static_cast<std::uint32_t>(pixels.top()), static_cast<std::uint32_t>(pixels.bottom())};
    constexpr std::uint8_t kBits = 32;
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, id,
                        atomNamed(connection, QByteArrayLiteral("_GTK_FRAME_EXTENTS")),
                        XCB_ATOM_CARDINAL, kBits, extents.size(), extents.data());
    const QRect body = QRect(QPoint(), window.size() * scale) - pixels;
    const xcb_rectangle_t input{
        static_cast<std::int16_t>(body.x()), static_cast<std::int16_t>(body.y()),
        static_cast<std::uint16_t>(body.width()), static_cast<std::uint16_t>(body.height())};
    xcb_shape_rectangles(connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT,
                         XCB_CLIP_ORDERING_UNSORTED, id, 0, 0, 1, &input);
    xcb_flush(connection);
}
