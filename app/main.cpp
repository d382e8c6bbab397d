#include "app/AppDelegate.h"
#include "app/Appearance.h"

#include <QApplication>
#include <QTimer>

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    setUpAppearance(application);
    AppDelegate delegate({});
    QObject::connect(&application, &QCoreApplication::aboutToQuit, &delegate,
                     &AppDelegate::applicationWillTerminate);
    QTimer::singleShot(0, &delegate, &AppDelegate::applicationDidFinishLaunching);
    return QApplication::exec();
}
