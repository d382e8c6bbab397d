#pragma once

#include <QString>
#include <memory>
#include <vector>

class ExcludedPaths;
class Info;
struct CleaningReport;

/// What the user is asked before a cleaning: the slices that are on, and the warning.
QString confirmationText(const std::vector<std::shared_ptr<Info>> &records);

/// Which of the chosen places a cleaning left alone as a whole, and why, for people; empty when
/// there is none. Single files that could not be removed are not told of.
QString leftAloneText(const CleaningReport &report);

/// Which stored exclusions cannot be read, and what to do about it, for people.
QString unparsableExclusionsText(const QStringList &stored);

/// Why nobody knows what is excluded, and what is known, for people.
QString unknownExclusionsText(const QString &damage, const ExcludedPaths &excluded);
