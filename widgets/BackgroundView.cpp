#include "widgets/BackgroundView.h"

#include "platform/look/Images.h"
#include "platform/look/ViewAlpha.h"

#include <QEvent>
#include <QLabel>
#include <QPaintEvent>
#include <QPainter>

namespace {

const auto kShadowImage = QStringLiteral("shadow");
constexpr std::chrono::milliseconds kShadowFade{1000};
/// How far the shadow reaches below the view.
constexpr int kShadowOverhang = 30;

} // namespace

BackgroundView::BackgroundView(QWidget *parent) : QWidget(parent)
{
}

BackgroundView::BackgroundView(const QRect &frame, QWidget *parent) : QWidget(parent)
{
    setGeometry(frame);
}

void BackgroundView::setBackgroundColor(const QColor &color)
{
    m_backgroundColor = color;
    update();
}

void BackgroundView::setCenter(QPointF center)
{
    m_center = center;
}

void BackgroundView::setDrawShadow(bool drawShadow)
{
    m_drawShadow = drawShadow;
    animateAlphaValue(*shadowView(), drawShadow ? 1 : 0, kShadowFade);
}

QWidget *BackgroundView::shadowView()
{
    if (!m_shadowView) {
        makeShadowView();
        placeShadowView();
    }
    return m_shadowView;
}

void BackgroundView::makeShadowView()
{
    // The shadow needs an owner, so without a parent this view owns it until there is a parent.
    m_shadowView = new QLabel(parentWidget() ? parentWidget() : this);
    m_shadowView->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_shadowView->setPixmap(imageNamed(kShadowImage, devicePixelRatioF()));
    m_shadowView->resize(imageSize(kShadowImage));
    setAlphaValue(*m_shadowView, 0);
}

void BackgroundView::placeShadowView()
{
    const QWidget *superview = parentWidget();
    const QSize size = m_shadowView->size();
    const int middle = superview ? superview->width() / 2 : 0;
    m_shadowView->move(middle - size.width() / 2, y() + height() + kShadowOverhang - size.height());
    m_shadowView->setVisible(superview != nullptr);
    m_shadowView->stackUnder(this);
}

bool BackgroundView::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::ParentChange:
        if (m_shadowView)
            m_shadowView->setParent(parentWidget() ? parentWidget() : this);
        [[fallthrough]];
    case QEvent::Move:
    case QEvent::Resize:
        if (m_shadowView)
            placeShadowView();
        break;
    default:
        break;
    }
    return QWidget::event(event);
}

void BackgroundView::paintEvent(QPaintEvent *event)
{
    if (m_backgroundColor.isValid() && m_backgroundColor.alpha() > 0)
        QPainter(this).fillRect(event->rect(), m_backgroundColor);
}
