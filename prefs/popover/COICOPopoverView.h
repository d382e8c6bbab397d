#pragma once

#include <QBrush>
#include <QWidget>

/// The content of a message popover: a rounded rectangle that fades from its colour (top) into the
/// control background (bottom), with one text on it. Main thread.
class COICOPopoverView final : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QColor backgroundColour READ backgroundColour WRITE setBackgroundColour)

public:
    explicit COICOPopoverView(QWidget *parent = nullptr);

    /// The control background until one was set.
    QColor backgroundColour() const;
    void setBackgroundColour(const QColor &colour);

    /// What a body of this size is filled with; also continues beyond it, for an arrow.
    QBrush fill(const QRectF &body) const;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QColor m_backgroundColour;
};
