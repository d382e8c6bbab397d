#pragma once

#include <QStringList>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

class ExcludedPaths;
class Info;
enum class ProgramsSeen : std::uint8_t;
enum class SliceKind : std::uint8_t;
struct CleaningReport;

/// The programs that keep something of a slice because they are in use.
using ProgramsOfSlice = std::function<QStringList(SliceKind)>;

/// What a confirmation says about the slices besides their names.
struct ConfirmationDetails
{
    ProgramsOfSlice programs;
    QString nameOfDownloads; ///< the folder that is emptied; empty where it has the slice's name
    ProgramsSeen seen{};     ///< all, unless said otherwise
};

/// The question before a cleaning: the slices that are on, and the warning. When a program in use
/// keeps its files, also the slice's size without them. When the folder of Downloads has another
/// name, also that name.
QString confirmationText(const std::vector<std::shared_ptr<Info>> &records,
                         const ConfirmationDetails &details = {});

/// What a slice's description adds while programs keep something of it; empty without any.
QString inUseText(const QStringList &programs, ProgramsSeen seen);

/// What the description of the slice Cache adds: what stays of it because any program is using it.
QString cacheInUseText(ProgramsSeen seen);

/// Which of the chosen locations a cleaning left alone as a whole, and why, for people; empty when
/// there is none. It leaves out single files that could not be removed.
QString leftAloneText(const CleaningReport &report);

/// Which stored exclusions cannot be read, and what to do about it, for people.
QString unparsableExclusionsText(const QStringList &stored);

/// Which stored exclusions another program has added, and that they hold, for people.
QString foundExclusionsText(const QStringList &stored);

/// Why the exclusions are not fully known, and which are known, for people.
QString unknownExclusionsText(const QString &damage, const ExcludedPaths &excluded);
