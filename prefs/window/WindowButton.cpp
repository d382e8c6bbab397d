#include "prefs/window/WindowButton.h"

#include "platform/look/Images.h"

#include <QPainter>

namespace {

QString baseName(WindowButtonKind kind)
{
    switch (kind) {
    case WindowButtonKind::Close:
        return QStringLiteral("windowClose");
    case WindowButtonKind::Minimize:
        return QStringLiteral("windowMinimize");
    case WindowButtonKind::Menu:
        return QStringLiteral("windowMenu");
    }
    Q_UNREACHABLE();
}

QString spokenName(WindowButtonKind kind)
{
    switch (kind) {
    case WindowButtonKind::Close:
        return WindowButton::tr("Close");
    case WindowButtonKind::Minimize:
        return WindowButton::tr("Minimize");
    case WindowButtonKind::Menu:
        return WindowButton::tr("Menu");
    }
    Q_UNREACHABLE();
}

} // namespace

WindowButton::WindowButton(WindowButtonKind kind, QWidget *parent)
    : QAbstractButton(parent), m_kind(kind)
{
    setAttribute(Qt::WA_Hover);
    // The keyboard has the desktop's own ways; focus here would let the space bar close the window.
    setFocusPolicy(Qt::NoFocus);
    setAccessibleName(spokenName(kind));
    setToolTip(spokenName(kind));
    resize(sizeHint());
}

QSize WindowButton::sizeHint() const
{
    return imageSize(baseName(m_kind));
}

void WindowButton::lookForPointer()
{
    setAttribute(Qt::WA_UnderMouse, rect().contains(mapFromGlobal(QCursor::pos())));
    update();
}

QString WindowButton::imageName() const
{
    const QString base = baseName(m_kind);
    if (isDown())
        return base + QStringLiteral("Pressed");
    if (underMouse())
        return base + QStringLiteral("Hover");
    return isActiveWindow() ? base : base + QStringLiteral("Inactive");
}

void WindowButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.drawPixmap(rect(), imageNamed(imageName(), devicePixelRatioF(), size()));
}
