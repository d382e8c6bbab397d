#pragma once

#include "prefs/popover/PopoverGeometry.h"

#include <QPointer>
#include <QWidget>
#include <memory>

class COICOPopoverView;
class PopoverFrameView;

/// A small window with an arrow that points at a place of a view. The popover closes and deletes
/// itself when the user clicks outside it or presses Escape, when the view is deleted, when the
/// page that holds it hides, and when its window closes, moves or changes its size. Only one is
/// open at a time. Main thread.
class Popover final : public QWidget
{
    Q_OBJECT

public:
    /// The content has its final size. The popover belongs to the window that it will point into.
    Popover(std::unique_ptr<COICOPopoverView> content, QWidget *window);

    COICOPopoverView &content() const;

    /// Opens beside `rect` (in the coordinates of `view`) at the preferred edge, or at another
    /// where the view's window has no room there.
    void showRelativeToRect(const QRect &rect, QWidget &view, Qt::Edge preferredEdge);

    /// Where it stands, in its own coordinates.
    const PopoverPlacement &placement() const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void place(const PopoverPlacement &onScreen);
    void closeWith(QWidget &view);

    const bool m_isBlended; ///< soft edges and a shadow; else a hard outline
    PopoverFrameView *m_frameView;
    QPointer<QWidget> m_page;
};
