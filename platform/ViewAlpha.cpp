#include "platform/ViewAlpha.h"

#include <QGraphicsEffect>
#include <QPainter>
#include <QPointer>
#include <QStyle>
#include <QVariantAnimation>

namespace {

/// Draws its widget through a picture at every opacity: the stock effect draws without one at
/// opacity 1, and then a faded child vanishes because its own effect cannot begin to paint.
class AlphaEffect final : public QGraphicsEffect
{
    Q_OBJECT

public:
    explicit AlphaEffect(QWidget *parent) : QGraphicsEffect(parent) {}

    double alpha() const { return m_alpha; }

    void setAlpha(double alpha)
    {
        m_alpha = alpha;
        setEnabled(alpha < 1);
        update();
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
        // The last value is a product, which need not be the wanted number to the last bit.
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
    QPointer<QVariantAnimation> m_animation;
};

AlphaEffect *effectOf(const QWidget &widget)
{
    return qobject_cast<AlphaEffect *>(widget.graphicsEffect());
}

AlphaEffect &madeEffectOf(QWidget &widget)
{
    if (!effectOf(widget))
        widget.setGraphicsEffect(new AlphaEffect(&widget));
    return *effectOf(widget);
}

} // namespace

double alphaValue(const QWidget &widget)
{
    const AlphaEffect *effect = effectOf(widget);
    return effect ? effect->alpha() : 1;
}

void setAlphaValue(QWidget &widget, double alpha)
{
    AlphaEffect &effect = madeEffectOf(widget);
    effect.stop();
    effect.setAlpha(alpha);
}

void animateAlphaValue(QWidget &widget, double alpha, std::chrono::milliseconds duration)
{
    madeEffectOf(widget).animate(alpha, animationDuration(widget, duration));
}

std::chrono::milliseconds animationDuration(const QWidget &widget,
                                            std::chrono::milliseconds duration)
{
    const bool isAnimated =
        widget.style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, &widget) > 0;
    return isAnimated ? duration : std::chrono::milliseconds::zero();
}

#include "ViewAlpha.moc"
