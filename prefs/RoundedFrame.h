#pragma once

#include <QColor>
#include <QWidget>

/// A container with a thin line around it and round corners. Main thread.
class RoundedFrame final : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QColor fillColor READ fillColor WRITE setFillColor)
    Q_PROPERTY(QColor lineColor READ lineColor WRITE setLineColor)

public:
    explicit RoundedFrame(QWidget *parent = nullptr) : QWidget(parent) {}

    QColor fillColor() const { return m_fillColor; }
    void setFillColor(const QColor &color);
    QColor lineColor() const { return m_lineColor; }
    void setLineColor(const QColor &color);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QColor m_fillColor{Qt::white};
    QColor m_lineColor{223, 228, 233};
};
