#pragma once

#include "slices/probe/HomeProbe.h"

class SystemCalls;

/// Tells what absolute paths mean in a granted home. Several paths may lead to the home, when a
/// folder around it is a link, and paths go on through links inside it. Where a path leads out of
/// the home, it looks at nothing: that may be a disk that does not answer. One thread.
class HomePaths final
{
public:
    /// The paths are absolute, without "..", and all lead to the home that is read, its own first;
    /// the reader must outlive this.
    HomePaths(const HomeProbe &reader, const QByteArrayList &paths);

    /// The home's paths: its own, and of the other one and usualOtherPath() those that lead to the
    /// same folder, through links or as a mount.
    static QByteArrayList leadingTo(const SystemCalls &calls, const QByteArray &homePath,
                                    const QByteArray &otherPath);

    /// The path at which systems with "/home" and "/var/home" often show a home too; empty for any
    /// other home.
    static QByteArray usualOtherPath(const QByteArray &homePath);

    /// Relative to the home, without "." and the like; nothing for a path that is not strictly
    /// below the home, or that goes through "..". Compares bytes and looks at no disk.
    std::optional<QByteArray> below(const QByteArray &path) const;

    /// Every path below the home for which this one stands: first as it is written, then past one
    /// link after another; none of them need be there. Ends at a link that leads out of the home,
    /// and after many; empty where the path never enters the home, or is absurdly deep.
    QByteArrayList followed(const QByteArray &path) const;

private:
    std::optional<QByteArrayList> namesBelow(const QByteArrayList &names) const;
    std::optional<QByteArrayList> pastFirstLink(const QByteArrayList &names) const;

    const HomeProbe &m_reader;
    QList<QByteArrayList> m_homes; ///< by the names on the way
};

/// Whether a name on the path is hidden.
bool hasHiddenComponent(const QByteArray &relativePath);
