#pragma once

#include "prefs/popover/TextBlock.h"

#include <QLabel>

/// The text of a message popover: a screen reader sees a label, which is painted with the same
/// lines by which the popover was measured. The lines stand in the middle of the field, which is
/// wider than they are.
class MessageField final : public QLabel
{
    Q_OBJECT

public:
    MessageField(const AttributedText &text, double maxWidth, QWidget *parent);

    /// What the lines need, in points.
    QSizeF textSize() const { return m_block.size(); }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    TextBlock m_block;
};
