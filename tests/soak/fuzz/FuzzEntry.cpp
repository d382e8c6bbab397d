// What the fuzzer calls: one target for each program, named when it is compiled.

#include "tests/soak/fuzz/FuzzTargets.h"
#include "tests/support/run/ScratchEnvironment.h"

#include <QCoreApplication>
#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

void keepSilent(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type == QtFatalMsg)
        std::fprintf(stderr, "%s\n", qPrintable(message));
}

const FuzzTarget &target()
{
    static const FuzzTarget *const found = [] {
        const auto targets = fuzzTargets();
        return std::to_address(
            std::find_if(targets.begin(), targets.end(), [](const FuzzTarget &each) {
                return QByteArray(each.name) == VANTOR_FUZZ_TARGET;
            }));
    }();
    return *found;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    static const ScratchEnvironment environment;
    static const QCoreApplication application(*argc, *argv);
    qInstallMessageHandler(keepSilent);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *bytes, std::size_t size)
{
    const QByteArray input(reinterpret_cast<const char *>(bytes), static_cast<qsizetype>(size));
    const QByteArray finding = target().findingIn(input);
    if (!finding.isEmpty()) {
        std::fprintf(stderr, "FINDING in %s: %s\n", VANTOR_FUZZ_TARGET, finding.constData());
        std::abort(); // the fuzzer keeps the input
    }
    return 0;
}
