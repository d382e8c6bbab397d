#include "tests/lint/SourceRules.h"

#include <QFile>
#include <QRegularExpression>

namespace {

constexpr int kLongestFile = 400;
constexpr int kLongestFunction = 60;

using BadLines = std::function<QList<int>(const SourceText &)>;

bool isCpp(const SourceText &source)
{
    return source.isCpp();
}

bool isProduct(const SourceText &source)
{
    return source.isCpp() && !source.isBelow("tests") && !source.isBelow("bench");
}

bool isAny(const SourceText &)
{
    return true;
}

BadLines linesMatching(QStringList SourceText::*part, const char *pattern)
{
    const QRegularExpression expression(QString::fromLatin1(pattern));
    return [part, expression](const SourceText &source) {
        QList<int> bad;
        const QStringList &lines = source.*part;
        for (int i = 0; i < lines.size(); ++i) {
            if (expression.match(lines[i]).hasMatch())
                bad.append(i + 1);
        }
        return bad;
    };
}

BadLines codeMatching(const char *pattern)
{
    return linesMatching(&SourceText::code, pattern);
}

bool isExplained(const SourceText &source, int line)
{
    const auto hasComment = [&](int i) {
        return i >= 0 && !source.comments[i].trimmed().isEmpty();
    };
    return hasComment(line - 1) || hasComment(line - 2);
}

QList<int> bareSleeps(const SourceText &source)
{
    static const BadLines sleeps =
        codeMatching(R"((QTest::q(Sleep|Wait)|\b(usleep|nanosleep|sleep_for|sleep_until)|)"
                     R"(QThread::(m|u)?sleep|::sleep)\s*\()");
    QList<int> bad = sleeps(source);
    bad.removeIf([&](int line) { return isExplained(source, line); });
    return bad;
}

QList<int> linesBeyondTheLongestFile(const SourceText &source)
{
    return source.lines.size() > kLongestFile ? QList<int>{kLongestFile + 1} : QList<int>();
}

QList<int> functionsBeyondTheLongest(const SourceText &source)
{
    QList<int> bad;
    for (const FunctionBody &body : functionBodies(source)) {
        if (body.length > kLongestFunction)
            bad.append(body.line);
    }
    return bad;
}

/// Includes of Qt headers that are not Qt Core's, and of headers that keep settings.
QList<int> includesBeyondCore(const SourceText &source)
{
    static const QRegularExpression include(QStringLiteral(R"(^\s*#\s*include\s*<(Q\w+)>)"));
    QList<int> bad;
    for (int i = 0; i < source.code.size(); ++i) {
        const QString name = include.match(source.code[i]).captured(1);
        if (name.isEmpty())
            continue;
        const QString header = QStringLiteral(VANTOR_QT_CORE_HEADERS "/") + name;
        if (!QFile::exists(header) || name == QStringLiteral("QSettings"))
            bad.append(i + 1);
    }
    return bad;
}

bool mayRemove(const SourceText &source)
{
    static const QStringList places{
        QStringLiteral("platform/system/SystemCalls_linux.cpp"), // the calls themselves
        QStringLiteral(
            "platform/files/DurableFile.cpp"), // files that it wrote itself beside its own file
        QStringLiteral("platform/system/SystemClocks_linux.cpp"), // a file of its own
        QStringLiteral("slices/removal/RemovalSteps.cpp"),        // the entries of the plan
        QStringLiteral("slices/removal/ExactRemoval.cpp"),        // the same, if it is the one
        QStringLiteral("slices/removal/AsideSlot.cpp"),           // the same, file after file
        QStringLiteral("slices/removal/AsideNames.cpp"),          // a file of its own
    };
    return places.contains(source.path);
}

bool mayStartThreads(const SourceText &source)
{
    static const QStringList places{
        QStringLiteral("platform/threads/BackgroundThreads.cpp"), // all background work
        QStringLiteral("platform/walk/WalkPool.h"),               // a walk that forks and joins
        QStringLiteral("slices/removal/ParallelRemover.cpp"),     // a removal that forks and joins
        QStringLiteral("slices/removal/ConfinedRun.cpp"),         // confined for good, and joined
        QStringLiteral("bench/BareWalk_linux.cpp"),               // the walk's yardstick, joined
    };
    return places.contains(source.path);
}

constexpr auto kThreadOfItsOwn = R"(\bQThreadPool\b|\bQtConcurrent\b|\bQThread::create\b|)"
                                 R"(\bstd::(jthread|async)\b|\bstd::thread\b(?!::))";

constexpr auto kSystemConditional =
    R"(^\s*#\s*(if|ifdef|ifndef|elif)\b.*\b(__linux__|__linux|__unix__|__APPLE__|__MACH__|)"
    R"(__FreeBSD__|_WIN32|_WIN64|TARGET_OS_\w+|Q_OS_\w+))";

constexpr auto kRemoval =
    R"((?<![\w.>])(unlink|unlinkat|rmdir|remove_all)\s*\(|(?<!\w)::remove\s*\(|)"
    R"(\bfilesystem::remove\s*\(|\bQFile::remove\b|\bQFile::moveToTrash\b|)"
    R"((\.|->)(remove\(\s*\)|removeRecursively|rmdir|rmpath|moveToTrash)|)"
    R"([Cc]alls(\(\))?(\.|->)remove(File|Folder)\s*\()";

} // namespace

QStringList offences(const SourceRule &rule, const SourceText &source)
{
    QStringList found;
    if (!rule.appliesTo(source))
        return found;
    for (const int line : rule.badLines(source))
        found.append(
            QStringLiteral("%1:%2: %3").arg(source.path).arg(line).arg(QLatin1String(rule.reason)));
    return found;
}

QList<SourceRule> sourceRules(const House &house)
{
    const auto isEngine = [house](const SourceText &source) {
        const Room *room = source.isCpp() ? house.roomOf(source.path) : nullptr;
        return room && room->isCore;
    };
    return {
        {"system conditional", "only platform/ knows which system it runs on; the rest is portable",
         [](const SourceText &source) { return source.isCpp() && !source.isBelow("platform"); },
         codeMatching(kSystemConditional)},
        {"file length", "a file over 400 lines holds more than one thing", isCpp,
         linesBeyondTheLongestFile},
        {"function length", "a function over 60 lines cannot be seen whole", isCpp,
         functionsBeyondTheLongest},
        {"bare sleep", "await what is awaited; a pause of fixed length is too long or too short",
         isCpp, bareSleeps},
        {"left-over note", "do it now, or write it down where it will be found", isAny,
         linesMatching(&SourceText::comments, R"(\b(TODO|FIXME|XXX|HACK)\b)")},
        {"skipped test",
         "a test that does not run proves nothing; only what VANTOR_NEEDS_… asks for may be "
         "missing",
         [](const SourceText &source) {
             return source.isCpp() &&
                    source.path != QLatin1String("tests/support/run/Administrator.h") &&
                    source.path != QLatin1String("tests/support/run/Confinement.h");
         },
         codeMatching(R"(\bQSKIP\b)")},
        {"module-prefixed include",
         "it compiles without linking the module, so it hides that the room may not use it", isCpp,
         codeMatching(R"(^\s*#\s*include\s*<Qt\w+/)")},
        {"include beyond Qt Core", "the engines know no widget, no picture and no settings",
         isEngine, includesBeyondCore},
        {"thread of its own",
         "what it may use when its owner ends is told by a BackgroundQueue; the toolkit's own pool "
         "paints, and waits for its spans",
         [](const SourceText &source) {
             return source.isCpp() && !source.isBelow("tests") && !mayStartThreads(source);
         },
         codeMatching(kThreadOfItsOwn)},
        {"removal", "only the plan's performance removes files, in one place",
         [](const SourceText &source) { return isProduct(source) && !mayRemove(source); },
         codeMatching(kRemoval)},
    };
}
