#pragma once

#include <QList>
#include <QStringList>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class ExcludedPaths;
class Info;
enum class ProgramsSeen : std::uint8_t;
enum class SliceKind : std::uint8_t;
struct CleaningReport;
struct PlaceOutOfReach;

/// The programs that keep something of a slice because they are in use.
using ProgramsOfSlice = std::function<QStringList(SliceKind)>;

/// The places that a slice would have, but cannot get to.
using ObstaclesOfSlice = std::function<QList<PlaceOutOfReach>(SliceKind)>;

/// What a confirmation says about the slices besides their names.
struct ConfirmationDetails
{
    ProgramsOfSlice programs;
    QString nameOfDownloads; ///< the folder that is emptied; empty where it has the slice's name
    ProgramsSeen seen{};     ///< all, unless said otherwise
    ObstaclesOfSlice outOfReach = {};
};

/// The question before a cleaning: the slices that are on, and the warning. When a program in use
/// keeps its files, also the slice's size without them. When the folder of Downloads has another
/// name, also that name. When a slice cannot get to a place, also that.
QString confirmationText(const std::vector<std::shared_ptr<Info>> &records,
                         const ConfirmationDetails &details = {});

/// What a slice's description adds while programs keep something of it; empty without any.
QString inUseText(const QStringList &programs, ProgramsSeen seen);

/// What the description of the slice Cache adds: what stays of it because any program is using it.
QString cacheInUseText(ProgramsSeen seen);

/// What a slice's description adds about places that are out of its reach; empty for none.
QString outOfReachText(const QList<PlaceOutOfReach> &places);

/// Something that lies among the caches and stays there, because nothing makes it anew.
struct KeptContent
{
    QString what;
    std::optional<qint64> bytes; ///< nothing until it is measured

    friend bool operator==(const KeptContent &, const KeptContent &) = default;
};

/// What a slice's description adds about what is kept, with its size; empty for nothing.
QString keptText(const QList<KeptContent> &kept);

/// Which of the chosen locations a cleaning left alone as a whole, and why, for people; empty when
/// there is none. It leaves out single files that could not be removed.
QString leftAloneText(const CleaningReport &report);

/// Which stored exclusions cannot be read, and what to do about it, for people.
QString unparsableExclusionsText(const QStringList &stored);

/// Which stored exclusions another program has added, and that they hold, for people.
QString foundExclusionsText(const QStringList &stored);

/// Why the exclusions are not fully known, and which are known, for people.
QString unknownExclusionsText(const QString &damage, const ExcludedPaths &excluded);
