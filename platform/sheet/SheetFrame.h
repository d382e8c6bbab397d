#pragma once

#include <QWidget>

/// What holds a panel while it is a sheet: the panel's background with rounded lower corners, a
/// soft border and, around it, a shadow. A dialog to assistive tools. Main thread only.
class SheetFrame final : public QWidget
{
    Q_OBJECT

public:
    /// Room around the panel for the shadow, at the left, the right and below.
    static constexpr int kShadow = 28;

    explicit SheetFrame(QWidget *parent);

    /// The size of a frame around a panel of this size, and the size of a panel in a frame of this
    /// size.
    static QSize sizeAround(QSize panel);
    static QSize sizeInside(QSize frame);

    /// Where the panel lies, the frame's own edges left out.
    QRect panelRect() const;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    static void paintShadow(QPainter &painter, const QRectF &body);
    QRectF body() const;
};
