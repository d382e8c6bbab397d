#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

class InterfaceLoader;

/// Owns one window or sheet, made on first use from the interface description that bears the name
/// of the controller's own class (which therefore needs Q_OBJECT). Closing hides the window; it is
/// kept and shown again. Main thread only.
class WindowController : public QObject
{
    Q_OBJECT

public:
    /// The loader must outlive the controller.
    explicit WindowController(const InterfaceLoader &loader, QObject *parent = nullptr);
    ~WindowController() override;

    /// The window; loaded when it is first asked for. Never null.
    QWidget *window();
    bool isWindowLoaded() const { return !m_window.isNull(); }

    /// Shows the window in front of all others. The first time, it appears in the middle of the
    /// active window, where the desktop lets windows choose their position.
    void showWindow();

protected:
    /// Called once, right after the window was loaded.
    virtual void windowDidLoad() {}

private:
    const InterfaceLoader &m_loader;
    QPointer<QWidget> m_window;
};
