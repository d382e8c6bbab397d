#pragma once

#include <QObject>
#include <functional>

class PieView;
class QKeyEvent;
class QMouseEvent;

/// What the user does with the slices of a pie: gets the events of pointer and keyboard before the
/// pie itself does, and tells which slice they mean. It knows where the pointer was last and on
/// which slice the keyboard's focus is; the pie shows the ring there.
///
/// It tells where the pointer or the focus is only while there is a tracking area. The pie adds one
/// when its slices stand still. Clicks and keys work at any time.
///
/// Owned by the pie. Main thread only.
class PieInteraction final : public QObject
{
    Q_OBJECT

public:
    /// Whether choosing the slice of that index does something.
    using CanSelect = std::function<bool(int index)>;

    /// The view must outlive this object.
    PieInteraction(PieView &view, CanSelect canSelect);

    bool hasTrackingArea() const { return m_hasTrackingArea; }
    void installTrackingArea();
    /// Stops telling where the pointer is, until there is a tracking area again.
    void destoryTrackingArea();

    /// The slice that the keyboard acts on, -1 for none.
    int focusedSlice() const { return m_focusedSlice; }
    /// Moves the keyboard's focus to a slice and shows the focus ring there. This counts as
    /// hovering.
    void focusSlice(int index);
    /// Lets the keyboard reach the pie when a slice can be chosen. Call it when that may have
    /// changed; it forgets a focused slice that can no longer be chosen.
    void updateFocusPolicy();

    bool canSelectSlice(int index) const;
    /// Does what a click on the slice does.
    void selectSlice(int index);

Q_SIGNALS:
    /// The user clicked the slice, or chose it with the keyboard or a screen reader.
    void selected(int index);
    /// The pointer, or the focus ring, is over the slice, -1 for none.
    void hovered(int index);
    void focusMoved(int index);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool hearInput(QEvent &event);
    bool press(const QMouseEvent &event);
    void move(const QMouseEvent &event);
    bool pressKey(const QKeyEvent &event);
    void pointerLeft();
    void moveFocus(int key);
    void focusCame(Qt::FocusReason reason);

    PieView &m_view;
    CanSelect m_canSelect;
    bool m_hasTrackingArea = false;
    bool m_leftUnseen = false; ///< the pointer left, which was not reported yet
    int m_focusedSlice = -1;
};
