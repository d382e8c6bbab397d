#pragma once

#include <QColor>
#include <QWidget>

/// A small flat patch of one colour: the mark of an entry in a legend. Main thread only.
class ColorView final : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QColor color READ color WRITE setColor)

public:
    explicit ColorView(QWidget *parent = nullptr);
    explicit ColorView(const QRect &frame, QWidget *parent = nullptr);

    /// Without a colour (an invalid one, which is the default) the patch is a nearly opaque white.
    QColor color() const { return m_color; }
    void setColor(const QColor &color);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QColor m_color;
};
