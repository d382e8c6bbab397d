#pragma once

#include <QColor>
#include <QPointF>
#include <QPointer>
#include <QWidget>

class QLabel;

/// The background on which a chart is painted: one flat colour, and a soft shadow behind it that
/// fades in and out. The shadow is a separate widget, below this one in the same parent, which owns
/// it. Main thread only.
class BackgroundView : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QColor backgroundColor READ backgroundColor WRITE setBackgroundColor)
    Q_PROPERTY(QPointF center READ center WRITE setCenter)
    Q_PROPERTY(bool drawShadow READ drawShadow WRITE setDrawShadow)

public:
    explicit BackgroundView(QWidget *parent = nullptr);
    explicit BackgroundView(const QRect &frame, QWidget *parent = nullptr);

    /// An invalid colour, which is the default, paints nothing.
    QColor backgroundColor() const { return m_backgroundColor; }
    void setBackgroundColor(const QColor &color);

    /// A point for the use of derived views, in this widget's coordinates.
    virtual QPointF center() const { return m_center; }
    virtual void setCenter(QPointF center);

    /// Whether the shadow is shown or is fading in.
    bool drawShadow() const { return m_drawShadow; }
    /// Fades the shadow in or out, over one second.
    void setDrawShadow(bool drawShadow);

    /// The picture of the shadow, made on first access and invisible (opacity 0) at first. Without
    /// a parent the shadow is made, but never shown.
    QWidget *shadowView();

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void makeShadowView();
    void placeShadowView();

    QColor m_backgroundColor;
    QPointF m_center;
    bool m_drawShadow = false;
    QPointer<QLabel> m_shadowView;
};
