#include "platform/look/ViewAlpha.h"

#include "platform/look/Pace.h"

#include "platform/look/AlphaVeil.h"

#include <QEvent>
#include <QGraphicsEffect>
#include <QPainter>
#include <QPointer>
#include <QStyle>
#include <QVariantAnimation>
#include <memory>

namespace {

/// Draws its widget through a picture at every opacity: the stock effect draws without one at
/// opacity 1, and then a faded child vanishes because its own effect cannot begin to paint.
class AlphaEffect final : public QGraphicsEffect
{
    Q_OBJECT

public:
    explicit AlphaEffect(QWidget *parent) : QGraphicsEffect(parent) {}

    void setAlpha(double alpha)
    {
        m_alpha = alpha;
        setEnabled(alpha < 1);
        update();
    }

protected:
    void draw(QPainter *painter) override
    {
        if (m_alpha <= 0)
            return;
        QPoint offset;
        const QPixmap picture = sourcePixmap(Qt::LogicalCoordinates, &offset, NoPad);
        painter->setOpacity(painter->opacity() * m_alpha);
        painter->drawPixmap(offset, picture);
    }

private:
    double m_alpha = 1;
};

/// Qt does not paint the background below an opaque child, even where its parent is faded and the
/// background should shine through. A widget with an effect does not count as opaque, even if the
/// effect is idle.
void showGroundBelowChildren(const QWidget &faded)
{
    const QList<QWidget *> children = faded.findChildren<QWidget *>();
    for (QWidget *child : children) {
        const bool isOpaque =
            child->autoFillBackground() || child->testAttribute(Qt::WA_OpaquePaintEvent);
        if (!isOpaque || child->graphicsEffect() || child->isWindow())
            continue;
        auto *effect = new AlphaEffect(child);
        effect->setAlpha(1);
        child->setGraphicsEffect(effect);
    }
}

/// The state of one widget's opacity; a child of the widget.
class ViewAlpha final : public QObject
{
    Q_OBJECT

public:
    explicit ViewAlpha(QWidget *widget) : QObject(widget), m_widget(*widget)
    {
        widget->installEventFilter(this);
    }
    ~ViewAlpha() override { delete m_veil; }

    double alpha() const { return m_alpha; }

    void setAlpha(double alpha)
    {
        m_alpha = alpha;
        draw();
    }

    void setDrawing(AlphaDrawing drawing)
    {
        m_drawing = drawing;
        draw();
    }

    void animate(double alpha, std::chrono::milliseconds duration)
    {
        stop();
        if (duration.count() <= 0) {
            setAlpha(alpha);
            return;
        }
        m_animation = new QVariantAnimation(this);
        m_animation->setStartValue(m_alpha);
        m_animation->setEndValue(alpha);
        m_animation->setDuration(static_cast<int>(duration.count()));
        m_animation->setEasingCurve(QEasingCurve::InOutSine);
        connect(m_animation, &QVariantAnimation::valueChanged, this,
                [this](const QVariant &value) { setAlpha(value.toDouble()); });
        // The last value is a product, so it may differ from the wanted number in the last bit.
        connect(m_animation, &QVariantAnimation::finished, this,
                [this, alpha] { setAlpha(alpha); });
        m_animation->start(QAbstractAnimation::DeleteWhenStopped);
    }

    void stop()
    {
        if (m_animation)
            m_animation->stop();
    }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::ParentChange)
            draw();
        return QObject::eventFilter(watched, event);
    }

private:
    void draw()
    {
        const bool isVeiled = m_drawing == AlphaDrawing::Veil;
        drawByPicture(isVeiled ? 1 : m_alpha);
        drawByVeil(isVeiled ? m_alpha : 1);
    }

    void drawByPicture(double alpha)
    {
        const bool isFaded = !m_effect.isNull() && m_effect->isEnabled();
        if (alpha < 1 && !isFaded)
            showGroundBelowChildren(m_widget);
        if (!m_effect && alpha < 1) {
            m_effect = new AlphaEffect(&m_widget);
            m_widget.setGraphicsEffect(m_effect);
        }
        if (m_effect)
            m_effect->setAlpha(alpha);
    }

    void drawByVeil(double alpha)
    {
        QWidget *const parent = m_widget.isWindow() ? nullptr : m_widget.parentWidget();
        if (m_veil && (alpha >= 1 || m_veil->parentWidget() != parent)) {
            delete m_veil;
            m_veil = nullptr;
        }
        if (!m_veil && alpha < 1 && parent)
            m_veil = new AlphaVeil(m_widget);
        if (m_veil)
            m_veil->setCover(1 - alpha);
    }

    QWidget &m_widget;
    double m_alpha = 1;
    AlphaDrawing m_drawing = AlphaDrawing::Picture;
    QPointer<QVariantAnimation> m_animation;
    QPointer<AlphaEffect> m_effect;
    QPointer<AlphaVeil> m_veil;
};

ViewAlpha *viewAlpha(const QWidget &widget)
{
    return widget.findChild<ViewAlpha *>(QString(), Qt::FindDirectChildrenOnly);
}

ViewAlpha &madeViewAlpha(QWidget &widget)
{
    ViewAlpha *const known = viewAlpha(widget);
    return known ? *known : *new ViewAlpha(&widget);
}

} // namespace

double alphaValue(const QWidget &widget)
{
    const ViewAlpha *const known = viewAlpha(widget);
    return known ? known->alpha() : 1;
}

void setAlphaDrawing(QWidget &widget, AlphaDrawing drawing)
{
    madeViewAlpha(widget).setDrawing(drawing);
}

void setAlphaValue(QWidget &widget, double alpha)
{
    ViewAlpha &state = madeViewAlpha(widget);
    state.stop();
    state.setAlpha(alpha);
}

void animateAlphaValue(QWidget &widget, double alpha, std::chrono::milliseconds duration)
{
    madeViewAlpha(widget).animate(alpha, animationDuration(widget, duration));
}

std::chrono::milliseconds animationDuration(const QWidget &widget,
                                            std::chrono::milliseconds duration)
{
    const bool isAnimated =
        widget.style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, &widget) > 0;
    return isAnimated ? paced(duration) : std::chrono::milliseconds::zero();
}

#include "ViewAlpha.moc"
