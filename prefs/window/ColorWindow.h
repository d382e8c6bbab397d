#pragma once

#include "prefs/window/ColorWindowShadow.h"
#include "prefs/window/WindowDrag.h"

#include <QPointer>
#include <QWidget>

class ColorWindowFrameView;
class EdgeGrip;
class QLabel;
class QMenuBar;
class WindowButton;
class WindowMenu;

/// A window that draws its own frame: white, with round corners, a thin title band with the
/// product's name, and close and minimise buttons of its own at the upper left. Whatever flags it
/// is made with, the desktop gives it no frame. It is dragged by its background and, unless its
/// size is fixed, resized by its edges. Sheets come out below the title band.
///
/// Interface descriptions name it as the class of their root, with addFormChild as its page method;
/// one child becomes the content view, a menu bar the menu. Main thread.
class ColorWindow final : public QWidget
{
    Q_OBJECT

public:
    explicit ColorWindow(QWidget *parent = nullptr, Qt::WindowFlags flags = {});

    /// What the application put into the window; lies inside the frame view.
    QWidget *contentView() const { return m_childContentView; }

    /// The window takes the view and lays it inside its frame; the first call also builds the
    /// frame's buttons and title. A former content view is taken out: it has no parent then and
    /// belongs to the caller again. Setting the same view again changes nothing.
    void setContentView(QWidget *view);

    /// Shows the bar's actions behind a button at the right of the title band (F10 opens it too);
    /// their shortcuts work as in a visible bar. Takes the bar. Where the desktop shows menu bars
    /// itself, the desktop shows this one.
    void setMenuBar(QMenuBar *bar);

    /// How an interface description's reader adds the root's children.
    Q_INVOKABLE void addFormChild(QWidget *child);

    /// Inside the frame view of a window whose frame has this rectangle's size, with y growing
    /// upwards. Always at (5, 5): it is used in the frame view's own coordinates.
    static QRectF contentRectForFrameRect(const QRectF &frame);

    /// Null until the first content view.
    WindowButton *closeButton() const { return m_closeButton; }
    WindowButton *minimizeButton() const { return m_minimizeButton; }
    WindowButton *menuButton() const { return m_menuButton; }
    QLabel *titleField() const { return m_titleField; }
    ColorWindowFrameView *frameView() const { return m_frameView; }

    /// Whether the window is dragged by its background.
    bool canMove() const { return m_canMove; }
    void setCanMove(bool canMove) { m_canMove = canMove; }

    /// Sets whether the window draws a soft shadow around its frame; unless this is set, the
    /// desktop decides. The window's sizes are the frame's until it is shown; then the shadow's
    /// room is added. Call this before the window is shown.
    void setHasShadow(bool hasShadow) { m_shadow.setIsWanted(hasShadow); }

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    /// The buttons look otherwise in a window that is not active.
    void mainWindowChanged();
    void buildChrome();
    void addButtons();
    void addTitle();
    void addGrips();
    void layOut();
    void updateShape();
    void showMenu();

    ColorWindowFrameView *m_frameView = nullptr;
    QPointer<QWidget> m_childContentView;
    WindowButton *m_closeButton = nullptr;
    WindowButton *m_minimizeButton = nullptr;
    WindowButton *m_menuButton = nullptr;
    QLabel *m_titleField = nullptr;
    QList<EdgeGrip *> m_grips;
    WindowMenu *m_menu = nullptr;
    WindowDrag m_drag;
    bool m_canMove = true;
    bool m_wasShown = false;
    const bool m_isBlended;
    ColorWindowShadow m_shadow;
};
