#pragma once

#include "tests/support/calls/HookedCalls.h"

#include <QByteArray>
#include <mutex>
#include <optional>
#include <vector>

/// A call that fails.
struct Fault
{
    /// ForGood: all later calls of its name fail as well.
    enum class Lasts { Once, ForGood };

    std::size_t call = 0;  ///< its number, from 0
    std::size_t which = 0; ///< of its possible errors; beyond the last one it does not fail
    Lasts lasts = Lasts::Once;
    std::optional<int> error = {}; ///< this one, even if the call cannot give it
};

/// The host's calls, some of which fail. Remembers which calls were made. Any thread.
class FailingCalls final : public HookedCalls
{
public:
    enum class Medium { Memory, Disk };

    explicit FailingCalls(std::vector<Fault> faults, Medium medium = Medium::Disk)
        : m_faults(std::move(faults)), m_medium(medium)
    {
    }

    /// Whatever the medium really is.
    bool isForOneThread(int) const override { return m_medium == Medium::Memory; }
    std::optional<int> before(const char *call, int parent, const char *name) const override;

    /// The names of all calls so far, by their number.
    std::vector<const char *> made() const;
    /// How many calls have failed, up to a bound.
    std::size_t happened() const;
    bool hasHappened(int error) const;
    /// What has failed, for people.
    QByteArray text() const;

private:
    struct Happened
    {
        QByteArray call;
        int error;
    };

    int errorOfLast(const Fault &fault) const;

    const std::vector<Fault> m_faults;
    const Medium m_medium;
    mutable std::mutex m_mutex; ///< guards all below
    mutable std::vector<const char *> m_made;
    mutable std::vector<Happened> m_happened;
};
