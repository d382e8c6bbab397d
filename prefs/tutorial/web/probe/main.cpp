#include "prefs/tutorial/TutorialEngine.h"

#include <QApplication>
#include <QPluginLoader>
#include <QTimer>
#include <QUrl>
#include <QWidget>
#include <chrono>
#include <memory>
#include <sys/resource.h>

// vantor-tutorial-probe <plugin> <limit>: shows one page in the tutorial's web view, in a window
// that is never seen, on the display that the program uses. The engine ends its process where it
// cannot start: here it ends this one. Ends after the limit, in milliseconds, at the latest. Exits
// with 0 when the page was shown.

namespace {

constexpr int kShown = 0;
constexpr int kNotShown = 1;
constexpr int kBadArguments = 2;

/// An expected end leaves no crash report behind. The limit is one byte: no core file is that
/// small, and a program that collects crashes is not called. With a limit of zero it would be
/// called.
void leaveNoCore()
{
    const rlimit none{1, 1};
    setrlimit(RLIMIT_CORE, &none);
}

} // namespace

int main(int argc, char **argv)
{
    leaveNoCore();
    QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const std::chrono::milliseconds limit(arguments.value(2).toInt());
    if (limit.count() <= 0)
        return kBadArguments;
    QPluginLoader loader(arguments.at(1));
    auto *engine = qobject_cast<TutorialEngine *>(loader.instance());
    if (!engine)
        return kNotShown;

    QTimer::singleShot(limit, &application, [] { QCoreApplication::exit(kNotShown); });
    const auto end = [](bool isShown) { QCoreApplication::exit(isShown ? kShown : kNotShown); };
    const QUrl page(QStringLiteral("qrc:/tutorialVantor.html"));
    std::unique_ptr<QWidget> view(engine->makeView(page, TutorialMotion::Still, end, nullptr));
    view->setAttribute(Qt::WA_DontShowOnScreen);
    view->resize(64, 64);
    view->show();
    const int outcome = QCoreApplication::exec();
    view.reset();
    engine->shutDown();
    return outcome;
}
