#pragma once

#include <QScrollBar>

/// A scroll bar that shows only its handle: slim, round, pale, darker under the pointer. Main
/// thread only.
class ThinScrollBar final : public QScrollBar
{
    Q_OBJECT

public:
    explicit ThinScrollBar(Qt::Orientation orientation, QWidget *parent = nullptr);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QRectF handle() const;
};
