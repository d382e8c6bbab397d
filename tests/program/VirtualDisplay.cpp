#include "tests/program/VirtualDisplay.h"

#include "tests/support/run/Must.h"

#include <QFile>
#include <QTest>

namespace {

constexpr int kPatience = 30'000; ///< milliseconds, for a slow machine

QProcessEnvironment environmentWith(const QString &display)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DISPLAY"), display);
    environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    return environment;
}

} // namespace

VirtualDisplay::VirtualDisplay()
{
    // The server chooses a free number, and says it once it is ready. It shows its picture in a
    // file.
    m_server.setStandardErrorFile(QProcess::nullDevice());
    m_server.start(QStringLiteral("Xvfb"),
                   {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                    QStringLiteral("0"), QStringLiteral("1280x1024x24"), QStringLiteral("-fbdir"),
                    m_folder.path(), QStringLiteral("-nolisten"), QStringLiteral("tcp")});
    while (!m_server.canReadLine())
        must(m_server.waitForReadyRead(kPatience), "a display");
    m_name = QLatin1Char(':') + QString::fromLatin1(m_server.readLine().trimmed());

    const QString ready = m_folder.filePath(QStringLiteral("ready"));
    m_manager.setProcessEnvironment(environmentWith(m_name));
    m_manager.setStandardErrorFile(QProcess::nullDevice());
    m_manager.start(QStringLiteral("openbox"),
                    {QStringLiteral("--sm-disable"), QStringLiteral("--startup"),
                     QStringLiteral("touch '%1'").arg(ready)});
    must(QTest::qWaitFor([&] { return QFile::exists(ready); }, kPatience), "a window manager");
}

VirtualDisplay::~VirtualDisplay()
{
    for (QProcess *process : {&m_manager, &m_server}) {
        process->kill();
        process->waitForFinished();
    }
}

QByteArray VirtualDisplay::picture() const
{
    QFile file(m_folder.filePath(QStringLiteral("Xvfb_screen0")));
    must(file.open(QIODevice::ReadOnly), "the picture of a display");
    return file.readAll();
}

bool VirtualDisplay::press(const QStringList &keys) const
{
    QProcess keyboard;
    keyboard.setProcessEnvironment(environmentWith(m_name));
    keyboard.start(QStringLiteral("xdotool"), QStringList{QStringLiteral("key")} + keys);
    return keyboard.waitForFinished(kPatience) && keyboard.exitCode() == 0;
}

void VirtualDisplay::kill()
{
    m_server.kill();
    m_server.waitForFinished();
}
