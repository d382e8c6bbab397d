#include "prefs/window/ColorWindowShadow.h"

#include "platform/desktop/WindowShadow.h"
#include "platform/look/SoftShadow.h"

#include <QPainter>
#include <QWidget>

namespace {

constexpr SoftShadow kShadow{24, 5, 0.20};
constexpr int kShadowDrop = 6; // the light comes from above
constexpr QMargins kShadowMargins(kShadow.reach, kShadow.reach - kShadowDrop, kShadow.reach,
                                  kShadow.reach + kShadowDrop);

} // namespace

ColorWindowShadow::ColorWindowShadow(QWidget &window)
    : m_window(window), m_isWanted(canAnnounceShadow())
{
}

QMargins ColorWindowShadow::margins() const
{
    return m_isWanted && !m_window.isMaximized() && !m_window.isFullScreen() ? kShadowMargins
                                                                             : QMargins();
}

void ColorWindowShadow::makeRoom()
{
    const QSize minimum = m_window.minimumSize();
    const QSize maximum = m_window.maximumSize();
    const QSize frame = m_window.size();
    const QSize room = frame.grownBy(kShadowMargins) - frame;
    m_window.setContentsMargins(kShadowMargins);
    m_window.setMinimumSize(minimum.isNull() ? minimum : minimum + room);
    m_window.setMaximumSize((maximum + room).boundedTo({QWIDGETSIZE_MAX, QWIDGETSIZE_MAX}));
    m_window.resize(frame + room);
}

void ColorWindowShadow::announce() const
{
    if (m_isWanted)
        announceShadow(m_window, margins());
}

void ColorWindowShadow::paint() const
{
    if (margins().isNull())
        return;
    QPainter painter(&m_window);
    paintSoftShadow(painter, m_window.contentsRect().translated(0, kShadowDrop), kShadow);
}
