#pragma once

#include "slices/page/SliceSelection.h"
#include "tests/support/page/SampleHome.h"

#include <QHash>
#include <QSet>

/// Keeps account of a made home and of what lies outside it: what was there, what may be gone after
/// the cleanings that the user consented to, and what is gone although it may not. Adds files
/// outside, and links to them in what can be cleaned.
class WatchedHome final
{
public:
    /// Both must outlive it.
    WatchedHome(const ScratchFolder &place, const SampleHome &home);

    /// What is excluded from the beginning, as the settings keep it.
    QStringList exclusions() const;

    /// A cleaning of this choice may take what the choice stands for.
    void allow(const SliceSelection::Choice &choice);

    /// What is gone, or has another size, and was not allowed to.
    QByteArrayList lost() const;
    /// How much is gone.
    int removedCount() const;

private:
    QByteArrayList pathsOf(const SliceSelection::ChosenSlice &slice) const;

    const SampleHome &m_home;
    QHash<QByteArray, qint64> m_sizes; ///< of all that was made, by absolute paths
    QSet<QByteArray> m_allowed;
};
