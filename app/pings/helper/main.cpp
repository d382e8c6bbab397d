#include "app/pings/helper/PageLoad.h"

#include <QGuiApplication>
#include <chrono>

// vantor-ping <url> <limit>: loads one page as a browser would, with its scripts, and shows
// nothing. Ends after the limit, in milliseconds, at the latest, also when the program that started
// it is gone. Exits with 0 when the page was loaded, with 1 when it was not, with 2 when the
// arguments are not an http or https address and a limit.

namespace {

constexpr int kLoaded = 0;
constexpr int kNotLoaded = 1;
constexpr int kBadArguments = 2;

/// No window is ever opened, so it makes no difference which display is used, or whether there is
/// one.
void prepareEnvironment()
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QByteArray flags = qgetenv("QTWEBENGINE_CHROMIUM_FLAGS");
    qputenv("QTWEBENGINE_CHROMIUM_FLAGS", flags + " --disable-gpu");
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts); // without it the engine crashes
}

bool isWebAddress(const QUrl &url)
{
    const bool isWeb =
        url.scheme() == QStringLiteral("http") || url.scheme() == QStringLiteral("https");
    return isWeb && !url.host().isEmpty();
}

} // namespace

int main(int argc, char **argv)
{
    prepareEnvironment();
    QGuiApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QUrl url(arguments.value(1), QUrl::StrictMode);
    const std::chrono::milliseconds limit(arguments.value(2).toInt());
    if (!isWebAddress(url) || limit.count() <= 0)
        return kBadArguments;

    PageLoad page;
    QObject::connect(&page, &PageLoad::finished, &application, [](bool wasLoaded) {
        QCoreApplication::exit(wasLoaded ? kLoaded : kNotLoaded);
    });
    QTimer::singleShot(limit, &application, [] { QCoreApplication::exit(kNotLoaded); });
    page.load(url);
    return QCoreApplication::exec();
}
