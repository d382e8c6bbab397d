#include "bench/Commands.h"

#include <QCoreApplication>
#include <array>
#include <cstdio>

namespace {

struct Command
{
    const char *name;
    const char *usage;
    int (*run)(const QStringList &arguments);
};

constexpr std::array kCommands{
    Command{"size", "size [--threads N] PATH...", &runSizeCommand},
    Command{"walk", "walk [--threads N] FOLDER", &runWalkCommand},
    Command{"search", "search [--threads N] [--exclude URL]... [--exclusions N] [--list] HOME",
            &runSearchCommand},
    Command{"clean", "clean PATH... [--exclude URL]... --yes", &runCleanCommand},
    Command{"growth", "growth FOLDER [ROW]", &runGrowthCommand},
    Command{"trees", "trees [--share N] FOLDER", &runTreesCommand},
    Command{"settings", "settings [--tutorial-declined] HOME FOLDER", &runSettingsCommand},
};

int printUsage()
{
    for (const Command &command : kCommands)
        std::fprintf(stderr, "usage: vantor-bench %s\n", command.usage);
    return kUsageError;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    for (const Command &command : kCommands) {
        if (arguments.value(0) == QLatin1String(command.name))
            return command.run(arguments.mid(1));
    }
    return printUsage();
}
