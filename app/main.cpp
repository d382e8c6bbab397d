#include "app/AppDelegate.h"
#include "app/Appearance.h"
#include "prefs/TutorialView.h"
#include "prefs/WebTutorial.h"

#include <QApplication>
#include <QTimer>
#include <chrono>

namespace {

using namespace std::chrono_literals;
/// The web engine is tried out when the window has come in.
constexpr auto kPauseBeforeProbe = 500ms;

AppDelegate::Configuration configurationWith(WebTutorial &tutorial)
{
    AppDelegate::Configuration configuration;
    configuration.makeTutorialView = [&tutorial](QWidget *parent) -> QWidget * {
        return tutorial.makeView(parent);
    };
    return configuration;
}

} // namespace

int main(int argc, char **argv)
{
    nameProgram();
    const bool mayShowTutorial = WebTutorial::mayBeShown(defaultSettingsFolder());
    if (mayShowTutorial)
        WebTutorial::prepareApplication();
    QApplication application(argc, argv);
    setUpAppearance(application);
    WebTutorial tutorial;
    AppDelegate delegate(configurationWith(tutorial));
    QObject::connect(&application, &QCoreApplication::aboutToQuit, &delegate,
                     &AppDelegate::applicationWillTerminate);
    QTimer::singleShot(0, &delegate, &AppDelegate::applicationDidFinishLaunching);
    if (mayShowTutorial)
        QTimer::singleShot(kPauseBeforeProbe, &tutorial, &WebTutorial::probe);
    return QApplication::exec();
}
