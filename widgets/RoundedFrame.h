#pragma once

#include <QColor>
#include <QWidget>

/// A container with a thin line around it and round corners. On demand the line shows that a widget
/// inside has the keyboard's focus. Main thread only.
class RoundedFrame final : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QColor fillColor READ fillColor WRITE setFillColor)
    Q_PROPERTY(QColor lineColor READ lineColor WRITE setLineColor)
    Q_PROPERTY(bool showsFocus READ showsFocus WRITE setShowsFocus)

public:
    explicit RoundedFrame(QWidget *parent = nullptr);

    QColor fillColor() const { return m_fillColor; }
    void setFillColor(const QColor &color);
    QColor lineColor() const { return m_lineColor; }
    void setLineColor(const QColor &color);
    bool showsFocus() const { return m_showsFocus; }
    void setShowsFocus(bool showsFocus);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    bool holdsFocus() const;

    QColor m_fillColor{Qt::white};
    QColor m_lineColor{223, 228, 233};
    bool m_showsFocus = false;
};
