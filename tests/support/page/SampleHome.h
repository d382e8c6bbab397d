#pragma once

#include "platform/files/FileUrl.h"
#include "slices/home/HomeLayout.h"
#include "tests/support/disk/ScratchFolder.h"

#include <QMap>

/// A made home folder of either kind, named as the login folder. It has content of every kind that
/// Vantor cleans, and of the kinds that it must leave: hidden items, links out of the folders to be
/// cleaned, names that begin like theirs, names that are no valid text. Large files take no room on
/// the disk.
///
/// It keeps a list of what it made, so that tests compare with sums and lists that do not come from
/// a walker of the program. A slice is named by its index in the catalogue; paths are raw and
/// relative to the home folder.
class SampleHome final
{
public:
    static constexpr int kSlices = 8;
    /// A folder that a user would exclude: it lies in Downloads and holds files and folders.
    static constexpr auto kKeep = "Downloads/Keep";

    /// `scale` multiplies the number of small files in the caches and logs (about 60 at 1), for
    /// measurements. The folder lives as long as `place`.
    explicit SampleHome(const ScratchFolder &place, int scale = 1,
                        HomeKind kind = HomeKind::Library);

    FileUrl url(const QByteArray &relativePath = {}, FileUrlKind kind = FileUrlKind::Folder) const;
    QByteArray path(const QByteArray &relativePath = {}) const;

    /// The locations of a slice, which are folders and files; none for "Large Files".
    QList<QByteArray> locationsOf(int slice) const;

    /// The size that measuring shows: everything below the locations that is no folder and not
    /// hidden; links count with their own size.
    qint64 bytesShownFor(int slice) const;
    /// The same for one location.
    qint64 bytesShownAt(const QByteArray &relativePath) const;

    /// All that was made, sorted.
    QList<QByteArray> paths() const { return m_items.keys(); }
    /// What cleaning the slice removes when nothing is excluded, sorted: hidden items too, but
    /// never the locations themselves unless they are files.
    QList<QByteArray> pathsCleanedWith(int slice) const;
    /// What the search for large files lists, largest first.
    QList<QByteArray> largeFiles() const;
    qint64 sizeOf(const QByteArray &relativePath) const { return m_items[relativePath].size; }

    /// What is on the disk now, sorted.
    QList<QByteArray> presentPaths() const;

private:
    struct Item
    {
        bool isFolder = false;
        qint64 size = 0;
    };

    QByteArray caches() const { return locationsOf(2).first(); }
    void makeSlices();
    void makeSmallFiles(int scale);
    void makeBystanders();
    void makeLinks();
    void file(const QByteArray &relativePath, qint64 size);
    void link(const QByteArray &relativePath, const QByteArray &target);
    void foldersAbove(const QByteArray &relativePath);

    const ScratchFolder &m_place;
    const HomeKind m_kind;
    QByteArray m_name;
    QMap<QByteArray, Item> m_items;
};
