#include "largefiles/preview/PlayerProcess.h"

#include <QCoreApplication>

namespace {

constexpr int kPatience = 100; ///< milliseconds

} // namespace

QString PlayerProcess::besideTheProgram()
{
    return QCoreApplication::applicationDirPath() + QStringLiteral("/vantor-player");
}

PlayerProcess::PlayerProcess(const QString &program, const QString &path, QSize frameSize,
                             QObject *parent)
    : QObject(parent)
{
    m_process->setStandardErrorFile(QProcess::nullDevice()); // codecs are talkative
    connect(m_process.get(), &QProcess::readyReadStandardOutput, this, &PlayerProcess::read);
    connect(m_process.get(), &QProcess::finished, this, &PlayerProcess::fail);
    connect(m_process.get(), &QProcess::errorOccurred, this, &PlayerProcess::fail);
    m_process->start(
        program, {QString::number(frameSize.width()), QString::number(frameSize.height()), path});
}

PlayerProcess::~PlayerProcess()
{
    m_process->disconnect(this);
    m_process->kill();
    if (m_process->state() == QProcess::NotRunning || m_process->waitForFinished(kPatience))
        return;
    // The process hangs in the system, perhaps because of its disk. It is deleted when it ends.
    QProcess *const late = m_process.release();
    connect(late, &QProcess::finished, late, &QObject::deleteLater);
}

void PlayerProcess::seek(qint64 milliseconds)
{
    m_process->write("seek " + QByteArray::number(milliseconds) + '\n');
}

void PlayerProcess::read()
{
    while (!m_isOver) {
        const ReadReport read = readReport(*m_process);
        if (read.state == ReadReport::State::Incomplete)
            return;
        if (read.state == ReadReport::State::Broken)
            return fail();
        m_isOver = read.report.kind == PlayerReport::Kind::Silent ||
                   read.report.kind == PlayerReport::Kind::Failed;
        Q_EMIT reported(read.report);
    }
}

/// The process has ended without a report, or its reports make no sense. A second failure is not
/// reported.
void PlayerProcess::fail()
{
    if (m_isOver)
        return;
    m_isOver = true;
    Q_EMIT reported({});
}
