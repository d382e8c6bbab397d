#pragma once

#include <QKeyEvent>
#include <QPointer>
#include <QWidget>
#include <memory>

/// While it lives, what lies behind a sheet gets no focus and no shortcut, and the window cannot be
/// closed. Main thread only.
class SheetGuard final : public QObject
{
    Q_OBJECT

public:
    SheetGuard(QWidget &host, QWidget &overlay);

    /// From now on not even the sheet's own shortcuts work: it is on its way out.
    void lock() { m_isLocked = true; }

    /// The widget that asked for the focus last and did not get it; null if there was none, or when
    /// it is gone.
    QWidget *refusedFocus() const { return m_refusedFocus; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    enum class Place { Inside, Behind, Elsewhere };

    bool mayHaveShortcut(QObject *receiver) const;
    Place placeOf(const QObject *object) const;
    Place placeOfReceiver(QObject *receiver) const;
    void giveKeyBack();
    void keepFocusInside(QWidget *now);
    void noteFocusBehind();

    QWidget &m_host;
    QWidget &m_overlay;
    QPointer<QWidget> m_focusInside;
    QPointer<QWidget> m_refusedFocus;
    std::unique_ptr<QKeyEvent> m_lastKey; ///< it may turn out to be a shortcut
    bool m_isGivingKeyBack = false;
    bool m_isLocked = false;
};
