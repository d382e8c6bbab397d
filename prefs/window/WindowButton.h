#pragma once

#include <QAbstractButton>

enum class WindowButtonKind { Close, Minimize, Menu };

/// A round button in a window's title band, drawn in colour under the pointer and pale while
/// another window is active. Acts on the window that it is in only through clicked(). Main thread.
class WindowButton final : public QAbstractButton
{
    Q_OBJECT

public:
    explicit WindowButton(WindowButtonKind kind, QWidget *parent = nullptr);

    /// Its own size.
    QSize sizeHint() const override;

    /// Finds out again whether the pointer is over the button. Call it when a popup closes: the
    /// popup takes the pointer and sends no event to the button that opened it.
    void lookForPointer();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    /// The drawing for the present state.
    QString imageName() const;

    WindowButtonKind m_kind;
};
