#include "app/navigation/WindowController.h"

#include "platform/desktop/InterfaceLoader.h"

#include <QApplication>

WindowController::WindowController(const InterfaceLoader &loader, QObject *parent)
    : QObject(parent), m_loader(loader)
{
}

WindowController::~WindowController()
{
    delete m_window;
}

QWidget *WindowController::window()
{
    if (!m_window) {
        LoadedInterface loaded = m_loader.load(QLatin1String(metaObject()->className()));
        if (!loaded)
            qFatal("%s: %s", qPrintable(loaded.error().file), qPrintable(loaded.error().text));
        m_window = loaded->release();
        windowDidLoad();
    }
    return m_window;
}

void WindowController::showWindow()
{
    const QWidget *active = QApplication::activeWindow();
    if (!isWindowLoaded() && active)
        window()->move(active->geometry().center() - window()->rect().center());
    window()->show();
    window()->raise();
    window()->activateWindow();
}
