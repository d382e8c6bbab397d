#include "widgets/StartButton.h"

#include "platform/look/Fonts.h"
#include "platform/look/Images.h"
#include "platform/look/OwnThreadPainting.h"
#include "widgets/TextField.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <cmath>

namespace {

constexpr int kMargin = 10; ///< left and right of the texts
constexpr int kMainSize = 40;
constexpr int kDetailSize = 16;
constexpr int kNaturalSize = 200;
constexpr QColor kTextColor(77, 77, 77);
constexpr QColor kHoverColor(77, 77, 77, 26);
constexpr double kRingRadius = 0.42; ///< of the disc's inner ring, as a part of the width

/// Widths of the texts as parts of the disc's width: each fits into the inner ring at its height.
constexpr double kMainWidth = 0.76;
constexpr double kDetailWidth = 0.64;
constexpr double kDetailMiddle = 0.75; ///< of the height

/// Rectangle of one line of text in the font, its middle at the given height.
QRect lineFrame(const QWidget &button, const QFont &font, double middle)
{
    const double height = lineHeight(font);
    return {kMargin, static_cast<int>(middle - height / 2), button.width() - 2 * kMargin,
            static_cast<int>(height)};
}

/// Limits a text to that part of the button, so that it is not drawn over the ring.
void limitWidth(TextField &field, double width)
{
    const int margin = std::max(0, static_cast<int>((field.width() - width) / 2));
    field.setContentsMargins(margin, 0, margin, 0);
}

TextField *madeField(QWidget *parent, const QFont &font)
{
    auto *field = new TextField(parent);
    field->setFont(font);
    field->setTextColor(kTextColor);
    field->setAlignment(Qt::AlignCenter);
    field->setAttribute(Qt::WA_TransparentForMouseEvents);
    return field;
}

} // namespace

StartButton::StartButton(QWidget *parent) : QAbstractButton(parent)
{
    setEnabled(false);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    resize(sizeHint());
    makeMainText();
    makeDetailText();
    connect(this, &QAbstractButton::clicked, this, &StartButton::triggered);
}

QSize StartButton::sizeHint() const
{
    return {kNaturalSize, kNaturalSize};
}

void StartButton::makeMainText()
{
    m_mainText = madeField(this, interfaceFont(Typeface::UltraLight, kMainSize));
    connect(m_mainText, &TextField::attributedTextChanged, this, [this] {
        layOutTexts();
        updateAccessibleName();
    });
}

void StartButton::makeDetailText()
{
    m_detailText = madeField(this, interfaceFont(Typeface::Light, kDetailSize));
    connect(m_detailText, &TextField::attributedTextChanged, this,
            &StartButton::updateAccessibleName);
    m_detailText->installEventFilter(this);
}

/// The main text in the middle, the detail text half way between it and the bottom.
void StartButton::layOutTexts()
{
    const AttributedText text = m_mainText->attributedText();
    const TextRun *first = text.firstRun();
    m_mainText->setGeometry(
        lineFrame(*this, first ? first->font : m_mainText->font(), QRectF(rect()).center().y()));
    m_detailText->setGeometry(lineFrame(*this, m_detailText->font(), height() * kDetailMiddle));
    limitWidth(*m_mainText, width() * kMainWidth);
    limitWidth(*m_detailText, width() * kDetailWidth);
}

/// One name for both captions; a hidden one is not read out.
void StartButton::updateAccessibleName()
{
    QStringList captions{m_mainText->text()};
    if (!m_detailText->isHidden())
        captions.append(m_detailText->text());
    captions.removeAll(QString());
    setAccessibleName(captions.join(QStringLiteral(", ")));
}

double StartButton::cornerRadius() const
{
    return QRectF(rect()).center().x();
}

/// Measures in whole points from the middle, so that the outermost pixels do not count as the
/// circle.
bool StartButton::isInside(const QPointF &position) const
{
    const double radius = cornerRadius();
    const int dx = std::abs(static_cast<int>(position.x() - radius));
    const int dy = std::abs(static_cast<int>(position.y() - radius));
    return radius > std::sqrt(dx * dx + dy * dy);
}

void StartButton::setHovered(bool isHovered)
{
    if (m_isHovered == isHovered)
        return;
    m_isHovered = isHovered;
    if (isHovered)
        setCursor(Qt::PointingHandCursor);
    else
        unsetCursor();
    update();
}

bool StartButton::event(QEvent *event)
{
    // A disabled button would swallow the pointer's events; in this program they belong to the
    // page.
    if (isEnabled())
        return QAbstractButton::event(event);
    return QWidget::event(event); // NOLINT(bugprone-parent-virtual-call)
}

bool StartButton::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ShowToParent || event->type() == QEvent::HideToParent)
        updateAccessibleName();
    else if (event->type() == QEvent::FontChange)
        layOutTexts();
    return QAbstractButton::eventFilter(watched, event);
}

void StartButton::resizeEvent(QResizeEvent *event)
{
    QAbstractButton::resizeEvent(event);
    setMask(QRegion(rect(), QRegion::Ellipse));
    layOutTexts();
}

void StartButton::mousePressEvent(QMouseEvent *event)
{
    m_showsFocus = false;
    if (event->button() == Qt::LeftButton && isInside(event->position()))
        setDown(true);
    else
        event->ignore(); // it belongs to the page
}

void StartButton::mouseMoveEvent(QMouseEvent *event)
{
    setHovered(isInside(event->position()));
}

void StartButton::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    setDown(false);
    if (isInside(event->position()))
        click();
    else
        event->ignore();
}

void StartButton::keyPressEvent(QKeyEvent *event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!isReturn)
        QAbstractButton::keyPressEvent(event);
    else if (!event->isAutoRepeat() && !isDown())
        animateClick();
}

void StartButton::focusInEvent(QFocusEvent *event)
{
    // A window that comes back to the front shows what it showed before.
    if (event->reason() != Qt::ActiveWindowFocusReason)
        m_showsFocus = event->reason() == Qt::TabFocusReason ||
                       event->reason() == Qt::BacktabFocusReason ||
                       event->reason() == Qt::ShortcutFocusReason;
    QAbstractButton::focusInEvent(event);
}

void StartButton::leaveEvent(QEvent *event)
{
    setHovered(false);
    QAbstractButton::leaveEvent(event);
}

void StartButton::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::EnabledChange)
        setHovered(isEnabled() && underMouse() && isInside(mapFromGlobal(QCursor::pos())));
    QAbstractButton::changeEvent(event);
}

void StartButton::paintRing(const QColor &color, double thickness)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(rowByRowBrush(color), thickness));
    const double radius = width() * kRingRadius;
    painter.drawEllipse(QRectF(rect()).center(), radius, radius);
}

void StartButton::paintEvent(QPaintEvent *)
{
    const QString image =
        isDown() ? QStringLiteral("circleButtonPressed") : QStringLiteral("circleButton");
    QPainter painter(this);
    copyToPixels(painter, {}, imageNamed(image, devicePixelRatioF(), size()));
    painter.end();
    if (m_isHovered && !isDown())
        paintRing(kHoverColor, 2);
    if (hasFocus() && m_showsFocus)
        paintRing(palette().color(QPalette::Active, QPalette::Highlight), 3);
}
