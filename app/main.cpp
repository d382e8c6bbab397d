#include "app/AppDelegate.h"
#include "app/Appearance.h"
#include "app/OneInstance.h"
#include "platform/ending/EndRequests.h"
#include "platform/ending/ExitGuard.h"
#include "platform/ending/ProcessEnd.h"
#include "platform/threads/BackgroundThreads.h"
#include "prefs/tutorial/WebTutorial.h"
#include "prefs/tutorial/WebTutorialView.h"

#include <QApplication>
#include <QTimer>
#include <chrono>

namespace {

using namespace std::chrono_literals;
/// The program tries out the web engine once the window has come in.
constexpr auto kPauseBeforeProbe = 500ms;
/// How long the program waits at its end for threads that were told to stop and still wait for the
/// disk.
constexpr auto kPatienceAtTheEnd = 1s;
/// How long the end may take once the settings are saved. What takes longer, such as the removal of
/// a file from a disk that is gone, does not end at all.
constexpr auto kLongestEnd = 20s;

AppDelegate::Configuration configurationWith(WebTutorial &tutorial, OneInstance &instance)
{
    AppDelegate::Configuration configuration;
    configuration.instance = &instance;
    configuration.makeTutorialView = [&tutorial](QWidget *parent) -> QWidget * {
        return new WebTutorialView(tutorial, parent);
    };
    return configuration;
}

/// Runs the program from the window to its end. A second start ends before there is any window.
int run(QApplication &application, OneInstance &instance, const EndRequests &requests,
        bool mayShowTutorial)
{
    setUpAppearance(application);
    QObject::connect(&requests, &EndRequests::endAsked, &application, [] {
        stopBackgroundThreads();
        QCoreApplication::exit(); // not quit(), which a window with a sheet refuses
    });
    if (const std::optional<int> end = instance.settle())
        return *end;
    WebTutorial tutorial;
    AppDelegate delegate(configurationWith(tutorial, instance));
    QObject::connect(&application, &QCoreApplication::aboutToQuit, &delegate,
                     &AppDelegate::applicationWillTerminate);
    QTimer::singleShot(0, &delegate, &AppDelegate::applicationDidFinishLaunching);
    if (mayShowTutorial)
        QTimer::singleShot(kPauseBeforeProbe, &tutorial, &WebTutorial::probe);
    const int result = QApplication::exec();
    endProcessAfter(kLongestEnd, {result, requests.signal()});
    return result;
}

/// Whether no thread asks the disk any more. Every task that changes files has already ended.
bool diskIsLeft()
{
    return waitForBackgroundThreads(kPatienceAtTheEnd);
}

} // namespace

int main(int argc, char **argv)
{
    nameProgram();
    OneInstance instance(defaultSettingsFolder());
    const bool mayShowTutorial = WebTutorial::mayBeShown(defaultSettingsFolder());
    QApplication application(argc, argv);
    const ExitGuard guard;
    const EndRequests requests;
    const int result = run(application, instance, requests, mayShowTutorial);
    // A thread that waits for a dead disk cannot be ended, and what it uses must not be destroyed
    // before it. Everything is saved, so the process may end as it is.
    if (!diskIsLeft() || requests.signal() != 0)
        endProcess({result, requests.signal()});
    return result;
}
