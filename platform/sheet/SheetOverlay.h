#pragma once

#include "platform/sheet/DestructivePressGuard.h"
#include "platform/sheet/SheetFrame.h"
#include "platform/sheet/SheetGuard.h"
#include "platform/sheet/SheetSlide.h"

#include <QPointer>
#include <QWidget>
#include <functional>

/// One sheet while it is up: covers the host window, dims it, holds the panel and takes all input.
/// Others use it through Sheet.h. Main thread only.
class SheetOverlay final : public QWidget
{
    Q_OBJECT

public:
    /// The host is a window. Escape calls `cancel`.
    SheetOverlay(QWidget &host, QWidget &panel, std::function<void()> cancel);
    ~SheetOverlay() override;

    /// Null when the panel died.
    QWidget *panel() const { return m_panel; }
    /// The panel is being deleted.
    void forgetPanel() { m_panel = nullptr; }
    SheetFrame &frame() const { return *m_frame; }

    void slideIn();
    /// Emits slidOut() at the end; the panel gets no more input.
    void slideOut();
    bool isSlidingOut() const { return m_isSlidingOut; }
    /// Gives the panel back to its former parent and hides. The focus goes back to where it was. If
    /// that is no longer possible, it goes to the widget behind the sheet that asked for it last.
    void release();

    /// Dims the window behind. `shown` tells how far the sheet is out, 0 to 1: the further, the
    /// darker.
    void paintBackdrop(QPainter &painter, double shown) const;

Q_SIGNALS:
    /// From the event loop.
    void slidOut();

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void adoptPanel();
    void layOut();
    void placeFrame(QSize size);
    void takeFocus();
    QWidget *nextFocus() const;
    bool slide(double from, double to);
    void dropSlide();
    void endSlide();
    void pressDefaultButton();

    QWidget &m_host;
    QPointer<QWidget> m_panel;
    QPointer<QWidget> m_formerParent;
    QPointer<QWidget> m_formerFocus;
    QPointer<QWidget> m_wantedFocus; ///< the panel loses it when the overlay adopts the panel
    bool m_hadOwnSize;
    QSize m_wantedSize;
    std::function<void()> m_cancel;
    SheetFrame *m_frame;
    SheetGuard *m_guard;
    DestructivePressGuard *m_presses;
    QPointer<SheetSlide> m_slide;
    bool m_isSlidingOut = false;
};
