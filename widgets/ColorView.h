#pragma once

#include <QColor>
#include <QWidget>

/// A small flat patch of one colour: the mark of a legend's entry. Main thread only.
class ColorView final : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QColor color READ color WRITE setColor)

public:
    explicit ColorView(QWidget *parent = nullptr);
    explicit ColorView(const QRect &frame, QWidget *parent = nullptr);

    /// Without a colour (an invalid one, as at first) the patch is a nearly opaque white.
    QColor color() const { return m_color; }
    void setColor(const QColor &color);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QColor m_color;
};
