#pragma once

#include <QWidget>

/// The legend below the slices: it tells what a coloured and what a grey slice mean. Main thread
/// only.
class LegendView final : public QWidget
{
    Q_OBJECT

public:
    explicit LegendView(QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
};
