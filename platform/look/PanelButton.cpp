#include "platform/look/PanelButton.h"

#include "platform/look/Fonts.h"

#include <QKeyEvent>
#include <QPainter>

namespace {

constexpr QColor kDanger(196, 46, 38);
constexpr int kFontSize = 13;
constexpr int kHeight = 32;
constexpr int kMinimumWidth = 96;
constexpr int kPadding = 20; // at each side of the title
constexpr double kRadius = 7;
constexpr double kHalfLine = 0.5; // a line of one point lies half inside its outline

// Per cent of the face's own lightness.
constexpr int kPressedDefault = 122;
constexpr int kPressed = 112;
constexpr int kHoveredDefault = 110;
constexpr int kHovered = 104;
constexpr int kDefaultBorder = 115;

constexpr float kBorderOpacity = 0.22F;
constexpr float kRingOpacity = 0.45F;
constexpr double kDisabledOpacity = 0.45;

} // namespace

PanelButton::PanelButton(const QString &title, PanelButtonLook look, QWidget *parent)
    : QPushButton(title, parent), m_look(look)
{
    setFont(interfaceFont(Typeface::Medium, kFontSize));
    setAttribute(Qt::WA_Hover);
    // A click that is not taken leaves no focus behind on what destroys.
    setFocusPolicy(look == PanelButtonLook::Destructive ? Qt::TabFocus : Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
}

QSize PanelButton::sizeHint() const
{
    const int title = fontMetrics().size(Qt::TextShowMnemonic, text()).width();
    return {qMax(kMinimumWidth, title + 2 * kPadding) + 2 * kRing, kHeight + 2 * kRing};
}

QColor PanelButton::faceColor() const
{
    const QColor face =
        isDefault() ? palette().color(QPalette::Highlight) : palette().color(QPalette::Base);
    if (isDown())
        return face.darker(isDefault() ? kPressedDefault : kPressed);
    if (underMouse() && isEnabled())
        return isDefault() ? face.lighter(kHoveredDefault) : face.darker(kHovered);
    return face;
}

QColor PanelButton::textColor() const
{
    if (isDefault())
        return palette().color(QPalette::HighlightedText);
    return m_look == PanelButtonLook::Destructive ? QColor(kDanger)
                                                  : palette().color(QPalette::WindowText);
}

void PanelButton::paintRing(QPainter &painter, const QRectF &face) const
{
    QColor ring = palette().color(QPalette::Highlight);
    ring.setAlphaF(kRingOpacity);
    painter.setPen(QPen(ring, kRing));
    painter.setBrush(Qt::NoBrush);
    const double out = kRing / 2.0;
    painter.drawRoundedRect(face.adjusted(-out, -out, out, out), kRadius + out, kRadius + out);
}

void PanelButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isEnabled())
        painter.setOpacity(kDisabledOpacity);
    const QRectF face = QRectF(rect()).adjusted(kRing, kRing, -kRing, -kRing);
    if (hasFocus())
        paintRing(painter, face);
    QColor border = isDefault() ? palette().color(QPalette::Highlight).darker(kDefaultBorder)
                                : palette().color(QPalette::WindowText);
    border.setAlphaF(isDefault() ? 1.0F : kBorderOpacity);
    painter.setPen(QPen(border, 1));
    painter.setBrush(faceColor());
    painter.drawRoundedRect(face.adjusted(kHalfLine, kHalfLine, -kHalfLine, -kHalfLine), kRadius,
                            kRadius);
    painter.setPen(textColor());
    painter.drawText(face, Qt::AlignCenter | Qt::TextShowMnemonic, text());
}

void PanelButton::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        event->ignore();
    else
        QPushButton::keyPressEvent(event);
}
