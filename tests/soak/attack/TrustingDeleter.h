#pragma once

#include <QByteArray>
#include <cstdint>

/// Empties a folder as simple programs do: looks, and then trusts that what it has seen is still
/// so. The attacks have to find something to destroy here, or they would prove nothing elsewhere.
class TrustingDeleter final
{
public:
    enum class Way {
        ByPath,       ///< by paths from the top, after an lstat of each
        ByDescriptor, ///< by names in open folders; follows no link
    };

    /// `excluded` is a path that it leaves alone. What has changed since the confirmation, it
    /// leaves too.
    TrustingDeleter(Way way, const QByteArray &excluded, std::int64_t confirmed)
        : m_way(way), m_excluded(excluded), m_confirmed(confirmed)
    {
    }

    void empty(const QByteArray &folder);
    std::uint64_t removed() const { return m_removed; }

private:
    void emptyByPath(const QByteArray &folder);
    void emptyByDescriptor(int folder, const QByteArray &path);
    void note(int answer) { m_removed += answer == 0 ? 1 : 0; }

    Way m_way;
    QByteArray m_excluded;
    std::int64_t m_confirmed;
    std::uint64_t m_removed = 0;
};
