#include "largefiles/sheet/TextButton.h"

#include <QKeyEvent>
#include <QPainter>
#include <cmath>

namespace {

constexpr int kHeight = 40;
constexpr int kPadding = 24;
constexpr int kMinimumWidth = 110;
constexpr float kHoverAlpha = 0.08F;
constexpr float kPressedAlpha = 0.18F;
constexpr float kRingAlpha = 0.6F;

QColor faded(QColor color, float alpha)
{
    color.setAlphaF(alpha);
    return color;
}

} // namespace

TextButton::TextButton(QWidget *parent) : QPushButton(parent)
{
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
}

void TextButton::setAttributedTitle(const AttributedText &title)
{
    m_title = title;
    setText(title.string()); // for assistive programs
    updateGeometry();
    update();
}

QSize TextButton::sizeHint() const
{
    return {qMax(kMinimumWidth, int(std::ceil(m_title.size().width())) + 2 * kPadding), kHeight};
}

void TextButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const TextRun *const style = m_title.firstRun();
    const QColor color = style ? style->color : palette().color(QPalette::ButtonText);
    const QRectF face = QRectF(rect()).adjusted(1, 1, -1, -1);
    painter.setPen(hasFocus() ? QPen(faded(color, kRingAlpha), 2) : QPen(Qt::NoPen));
    painter.setBrush(isDown()       ? faded(color, kPressedAlpha)
                     : underMouse() ? faded(color, kHoverAlpha)
                                    : QColor(Qt::transparent));
    painter.drawRoundedRect(face, face.height() / 2, face.height() / 2);
    m_title.draw(painter, QRectF(rect()).adjusted(kPadding / 2.0, 0, -kPadding / 2.0, 0));
}

void TextButton::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        click();
    else
        QPushButton::keyPressEvent(event);
}
