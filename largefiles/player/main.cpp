#include "largefiles/player/Playback.h"
#include "platform/confinement/ProcessConfinement.h"

#include <QGuiApplication>
#include <QSocketNotifier>
#include <QTimer>
#include <unistd.h>

// vantor-player <width> <height> <file>: plays the file, writes reports to its standard output as
// writeReport() does, with frames that fit into so many pixels, and obeys the commands that come as
// lines on its standard input, see Playback::obey(). Ends with its input, so that it never outlives
// the program that started it. It runs in a sandbox, and confines itself before it opens the file
// (Confinement::Player). Exits with 2 for bad arguments, and with kExitUnconfined when the system
// cannot confine it.

namespace {

constexpr int kBadArguments = 2;
constexpr int kInput = 0;
constexpr int kOutput = 1;

/// Obeys the whole lines that have come, and keeps the rest; quits at the end of the input.
void readCommands(QByteArray &pending, Playback &playback)
{
    char bytes[256];
    const ssize_t count = ::read(kInput, bytes, sizeof bytes);
    if (count <= 0)
        return QCoreApplication::quit();
    pending.append(bytes, count);
    for (qsizetype end = 0; (end = pending.indexOf('\n')) >= 0;) {
        const QByteArray command = pending.left(end);
        pending.remove(0, end + 1);
        playback.obey(command);
    }
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen"); // the program that started it shows the frames
    // This backend brings its codecs along; the other backend of some versions needs plugins on the
    // system.
    if (!qEnvironmentVariableIsSet("QT_MEDIA_BACKEND"))
        qputenv("QT_MEDIA_BACKEND", "ffmpeg");
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QSize frameSize(arguments.value(1).toInt(), arguments.value(2).toInt());
    QFile output;
    if (frameSize.isEmpty() || frameSize.width() > kLargestFrameSide ||
        frameSize.height() > kLargestFrameSide || arguments.size() != 4 ||
        !output.open(kOutput, QIODevice::WriteOnly | QIODevice::Unbuffered))
        return kBadArguments;
    Playback playback(output, frameSize);
    // Has the decoders and the sound server by now.
    if (!confineThisProcess(Confinement::Player))
        return kExitUnconfined;
    QByteArray pending;
    QSocketNotifier notifier(kInput, QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, &playback,
                     [&] { readCommands(pending, playback); });
    QTimer::singleShot(0, &playback, [&] { playback.start(arguments.at(3)); });
    return QGuiApplication::exec();
}
