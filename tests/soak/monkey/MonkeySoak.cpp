// Lets a monkey play with the program for so many events, home after home, and prints a row.

#include "tests/soak/kit/SoakPart.h"
#include "tests/soak/monkey/MonkeyRound.h"
#include "tests/soak/monkey/ProcessFigures.h"
#include "tests/soak/monkey/ToolkitWarnings.h"
#include "tests/support/run/BackgroundThreadsAwaited.h"
#include "tests/support/run/ScratchEnvironment.h"

#include <QApplication>
#include <QStyleFactory>
#include <cstdio>

namespace {

constexpr int kEventsOfRound = 400;
/// More than the caches of fonts and pictures take, less than a window in every round.
constexpr qint64 kMostGrowth = 24LL * 1024 * 1024;
constexpr int kMostDescriptors = 4;
/// The sanitizers keep what was freed.
constexpr bool kIsMemoryMeasured = QByteArrayView(VANTOR_SANITIZERS).isEmpty();

/// The figures of this process half way and at the end.
struct Growth
{
    void look()
    {
        const ProcessFigures now = ProcessFigures::now();
        if (!m_isStarted)
            m_start = now;
        m_isStarted = true;
        m_end = now;
    }
    qint64 memory() const { return m_end.memory - m_start.memory; }
    int descriptors() const { return m_end.descriptors - m_start.descriptors; }
    bool isSmall() const
    {
        return descriptors() <= kMostDescriptors && (!kIsMemoryMeasured || memory() <= kMostGrowth);
    }

private:
    ProcessFigures m_start;
    ProcessFigures m_end;
    bool m_isStarted = false;
};

SoakPart::Row rowOf(const MonkeyTally &tally, const Growth &growth, qsizetype warnings)
{
    const QByteArray sanitizers(VANTOR_SANITIZERS);
    const QByteArray memory =
        kIsMemoryMeasured ? QByteArray::number(growth.memory() / 1024) + " KB and " : "";
    return {"random events at the window",
            QGuiApplication::platformName().toUtf8() +
                (sanitizers.isEmpty() ? "" : ", sanitizers: ") + sanitizers,
            grouped(tally.events) + " events",
            grouped(tally.findings.size()) + " findings, " + grouped(warnings) +
                " warnings of the toolkit; " + grouped(tally.cleanings) +
                " cleanings that were agreed to removed " + grouped(tally.removed) + " items, " +
                grouped(tally.earlyPresses) + " early presses none; it grew by " + memory +
                QByteArray::number(growth.descriptors()) + " descriptors"};
}

void tell(const QStringList &texts)
{
    for (const QString &text : texts)
        std::fprintf(stderr, "  %s\n", qPrintable(text));
}

/// Plays until the events are sent or something is found, and prints the row.
void play(SoakPart &part)
{
    const int events = static_cast<int>(part.amount());
    quint32 seed = part.seed();
    ToolkitWarnings warnings;
    qsizetype warningCount = 0;
    MonkeyTally tally;
    Growth growth;
    while (tally.events < events && tally.findings.isEmpty()) {
        std::fprintf(stderr, "%d events; next: --amount %d --seed %u\n", tally.events,
                     kEventsOfRound, seed);
        MonkeyRound(seed++).play(std::min(kEventsOfRound, events - tally.events), tally);
        const QStringList heard = warnings.take();
        tell(heard);
        warningCount += heard.size();
        if (tally.events >= events / 2)
            growth.look();
    }
    tell(tally.findings);
    const bool isEnough = tally.cleanings > 0 || events < 5 * kEventsOfRound;
    SoakPart::Row row = rowOf(tally, growth, warningCount);
    row.findings = std::uint64_t(tally.findings.size() + warningCount) +
                   (growth.isSmall() ? 0 : 1) + (isEnough ? 0 : 1);
    part.print(row);
}

} // namespace

int main(int argc, char **argv)
{
    const ScratchEnvironment environment;
    qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:"); // nobody else is asked to do anything
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setQuitOnLastWindowClosed(false);
    SoakPart part({"Lets a monkey play with the program.", "Events to send."});
    play(part);
    awaitBackgroundThreads();
    return part.exitCode();
}
