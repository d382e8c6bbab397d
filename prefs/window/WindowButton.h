#pragma once

#include <QAbstractButton>

enum class WindowButtonKind { Close, Minimize, Menu };

/// A round button in a window's title band, drawn in colour under the pointer and pale while
/// another window is active. Works for the window that it is in only through clicked(). Main
/// thread.
class WindowButton final : public QAbstractButton
{
    Q_OBJECT

public:
    explicit WindowButton(WindowButtonKind kind, QWidget *parent = nullptr);

    /// Its own size.
    QSize sizeHint() const override;

    /// Finds out anew whether the pointer is here. For when a popup closes: it takes the pointer
    /// along without a word to the button that opened it.
    void lookForPointer();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    /// The drawing that shows how things stand.
    QString imageName() const;

    WindowButtonKind m_kind;
};
