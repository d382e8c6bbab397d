// Runs the fuzzer's programs one after the other and prints a row for each.

#include "tests/soak/fuzz/FuzzTargets.h"
#include "tests/soak/kit/SoakPart.h"
#include "tests/support/run/Must.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <cstdio>

namespace {

struct Run
{
    SoakPart &part;
    QDir programs;
    QDir findings; ///< where the inputs of findings are kept
};

QString named(const FuzzTarget &target)
{
    return QString::fromLatin1(target.name);
}

QStringList argumentsFor(const FuzzTarget &target, const Run &run, const QString &workFolder)
{
    return {
        QStringLiteral("-max_total_time=%1").arg(run.part.amount()),
        QStringLiteral("-seed=%1").arg(run.part.seed()),
        QStringLiteral("-artifact_prefix=%1/%2-").arg(run.findings.absolutePath(), named(target)),
        QStringLiteral("-print_final_stats=1"),
        QStringLiteral("-use_value_profile=1"),
        QStringLiteral("-timeout=20"),
        QStringLiteral("-rss_limit_mb=3000"),
        workFolder,
        QStringLiteral(VANTOR_FUZZ_CORPUS "/%1").arg(named(target))};
}

/// How many inputs were tried, as the fuzzer says at its end.
qulonglong executionsIn(const QByteArray &log)
{
    static const QRegularExpression count(
        QStringLiteral(R"(stat::number_of_executed_units:\s*(\d+))"));
    return count.match(QString::fromLatin1(log)).captured(1).toULongLong();
}

/// Prints the target's row.
void fuzz(const FuzzTarget &target, const Run &run)
{
    const QTemporaryDir workFolder;
    QProcess fuzzer;
    fuzzer.setProcessChannelMode(QProcess::MergedChannels);
    fuzzer.start(run.programs.filePath(QStringLiteral("vantor-fuzz-") + named(target)),
                 argumentsFor(target, run, workFolder.path()));
    fuzzer.waitForFinished(-1);
    const QByteArray log = fuzzer.readAll();
    const qulonglong executions = executionsIn(log);
    const bool isWell = fuzzer.error() == QProcess::UnknownError &&
                        fuzzer.exitStatus() == QProcess::NormalExit && fuzzer.exitCode() == 0 &&
                        executions > 0;
    if (!isWell)
        std::fprintf(stderr, "%s\n%s", target.name, log.right(8192).constData());
    run.part.print({"fuzzing " + QByteArray(target.description),
                    "libFuzzer, address and undefined behaviour sanitizers",
                    grouped(executions) + " inputs", isWell ? "0 findings" : "a finding",
                    isWell ? 0U : 1U});
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    SoakPart part({"Fuzzes the readers of what others have written.", "Seconds for each target."},
                  {soakOption("target", "Only this target.", "NAME")});
    const QDir programs(QStringLiteral(VANTOR_FUZZ_PROGRAMS));
    const Run run{part, programs, QDir(programs.filePath(QStringLiteral("findings")))};
    must(run.findings.mkpath(QStringLiteral(".")), "a folder for findings");
    for (const FuzzTarget &target : fuzzTargets()) {
        if (!part.isSet("target") || part.value("target") == target.name)
            fuzz(target, run);
    }
    return part.exitCode();
}
