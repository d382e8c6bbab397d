#pragma once

#include "prefs/popover/PopoverGeometry.h"

#include <QWidget>
#include <memory>

class COICOPopoverView;

/// What surrounds a popover's content: its outline with the arrow, a hairline around it, and a soft
/// shadow. Fills its popover. Main thread.
class PopoverFrameView final : public QWidget
{
    Q_OBJECT

public:
    /// The content has its final size.
    PopoverFrameView(std::unique_ptr<COICOPopoverView> content, QWidget *parent);

    COICOPopoverView &content() const { return *m_content; }

    /// Whether there is room for a shadow around the outline.
    void setHasShadow(bool hasShadow) { m_hasShadow = hasShadow; }

    /// Takes the size that the placement needs and lays the content out. Returns where the view's
    /// upper left corner belongs, in the placement's coordinates.
    QPoint place(const PopoverPlacement &placement);

    /// Everything that is painted except the shadow.
    QPainterPath shape() const;

    /// The placement in its own coordinates.
    const PopoverPlacement &placement() const { return m_placement; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    COICOPopoverView *m_content;
    PopoverPlacement m_placement;
    bool m_hasShadow = true;
};
