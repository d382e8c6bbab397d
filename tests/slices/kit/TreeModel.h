#pragma once

#include "tests/slices/kit/CleaningKit.h"

#include <QRandomGenerator>
#include <map>
#include <sys/stat.h>
#include <vector>

/// A random tree on the disk, and the same tree as plain sets, from which what must be left of it
/// is worked out the slow and obvious way. Shares no code with what it is compared to.
class TreeModel final
{
public:
    struct Node
    {
        QByteArray path; ///< absolute
        bool isFolder = false;
        ino_t inode = 0;
        bool isLater = false; ///< it was changed after the confirmation; of a folder: itself
    };

    /// Whether the other names of an excluded file are recognised. Where the calls for that may
    /// fail, these names may be removed: the excluded name and the content stay.
    enum class OtherNames { Known, PerhapsNot };

    /// Builds the tree in the folder, with links and hard links into `outside`.
    TreeModel(const QByteArray &folder, const QByteArray &outside, QRandomGenerator &random)
        : m_folder(folder), m_random(random)
    {
        makeFile(outside + "/precious", "p");
        grow(m_folder, outside, 0);
        identify();
    }

    const std::vector<Node> &nodes() const { return m_nodes; }
    const QByteArray &folder() const { return m_folder; }

    /// For whoever changes the tree: the nodes, to be kept as the disk has them.
    std::vector<Node> &nodes() { return m_nodes; }
    /// Finds out the inode numbers anew.
    void identify()
    {
        for (Node &node : m_nodes) {
            struct stat found
            {
            };
            ::lstat(node.path.constData(), &found);
            node.inode = found.st_ino;
        }
    }
    /// Something came into this folder, left it, or got another name in it.
    void noteChangeIn(const QByteArray &folder)
    {
        m_isLater = m_isLater || folder == m_folder;
        for (Node &node : m_nodes)
            node.isLater = node.isLater || node.path == folder;
    }
    /// The same tree if nothing had been changed after the confirmation.
    TreeModel asIfUnchanged() const
    {
        TreeModel model = *this;
        model.m_isLater = false;
        for (Node &node : model.m_nodes)
            node.isLater = false;
        return model;
    }

    /// What must be left of the folder when its contents are cleaned.
    std::set<QByteArray> leftOfContents(const FileUrls &given, OtherNames names) const
    {
        const FileUrls excluded = withTargets(given, names);
        const bool isTouched = touches(excluded, m_folder);
        const bool isInside = std::any_of(excluded.begin(), excluded.end(), [&](const auto &url) {
            return isWithin(m_folder, url.path());
        });
        std::set<QByteArray> kept;
        for (const Node &node : m_nodes) {
            if (isInside || (isTouched && isKeptByText(node, excluded)) ||
                isKept(node, excluded, names) || isInKeptPackage(node, excluded) ||
                isLeftAsLater(node, m_folder))
                keepWithParents(node.path, kept);
        }
        return kept;
    }

    /// What must be left of the folder when these of its nodes are removed themselves.
    std::set<QByteArray> leftOfFiles(const std::vector<Node> &listed, const FileUrls &given,
                                     OtherNames names) const
    {
        const FileUrls excluded = withTargets(given, names);
        const bool isTouched = std::any_of(listed.begin(), listed.end(), [&](const Node &node) {
            return touches(excluded, node.path);
        });
        const auto isRemoved = [&](const Node &node) {
            return std::any_of(listed.begin(), listed.end(), [&](const Node &gone) {
                return isWithin(node.path, gone.path) && !gone.isLater &&
                       !isLeftAsLater(node, gone.path) &&
                       !(isTouched && isKeptByText(gone, excluded)) &&
                       !isKept(gone, excluded, names) && !isAround(gone, excluded);
            });
        };
        std::set<QByteArray> kept;
        for (const Node &node : m_nodes) {
            if (!isRemoved(node) || isKept(node, excluded, names))
                keepWithParents(node.path, kept);
        }
        return kept;
    }

private:
    static inline const QByteArrayList kNames{
        "a",         "ab",         "a.b",   "abc",
        "A",         "Keep",       "keep",  "Keep2",
        "x y",       "%",          "%2F",   "#",
        "?",         "two\nlines", "a\xff", "a\xef\xbf\xbd",
        ".app",      ".h",         "P.app", "\xc3\xa4",
        "a\xcc\x88", "...",        "~",     QByteArray(255, 'l')};
    static constexpr int kMaxNodes = 24;
    static constexpr int kMaxDepth = 5;

    void grow(const QByteArray &folder, const QByteArray &outside, int depth)
    {
        for (int count = m_random.bounded(1, 6); count > 0; --count) {
            const QByteArray path = folder + '/' + kNames[m_random.bounded(int(kNames.size()))];
            if (m_nodes.size() >= kMaxNodes || exists(path))
                continue;
            const int kind = m_random.bounded(10);
            m_nodes.push_back({path, kind < 4 && depth < kMaxDepth, 0});
            if (m_nodes.back().isFolder) {
                makeFolder(path);
                grow(path, outside, depth + 1);
            } else {
                makeLeaf(path, outside, kind);
            }
        }
    }

    void makeLeaf(const QByteArray &path, const QByteArray &outside, int kind)
    {
        const Node &other = m_nodes[m_random.bounded(quint32(m_nodes.size()))];
        if (kind == 9)
            makeLink(path, outside);
        else if (kind == 8)
            makeLink(path, other.path);
        else if (kind == 7)
            ::mkfifo(path.constData(), 0600);
        else if (kind == 6)
            std::filesystem::create_hard_link(native(outside + "/precious"), native(path));
        else if (kind == 5 && !other.isFolder && other.path != path)
            ::link(other.path.constData(), path.constData());
        if (!exists(path))
            makeFile(path);
    }

    static QByteArray encoded(const QByteArray &path)
    {
        QByteArray text("file://");
        for (const char c : path)
            text += std::isalnum(static_cast<unsigned char>(c)) || c == '/'
                        ? QByteArray(1, c)
                        : '%' + QByteArray(1, c).toHex();
        return text;
    }
    static QByteArray textOf(const Node &node)
    {
        return encoded(node.path) + (node.isFolder ? "/" : "");
    }
    static bool isWithin(const QByteArray &path, const QByteArray &folder)
    {
        return path == folder || path.startsWith(folder + '/');
    }
    static bool touches(const FileUrls &excluded, const QByteArray &path)
    {
        return std::any_of(excluded.begin(), excluded.end(),
                           [&](const FileUrl &url) { return url.path().contains(path); });
    }
    static bool isKeptByText(const Node &node, const FileUrls &excluded)
    {
        const QByteArray text = textOf(node);
        return std::any_of(excluded.begin(), excluded.end(), [&](const FileUrl &url) {
            const QByteArray other = encoded(url.path()) + (url.isFolder() ? "/" : "");
            return text.contains(other) || other.contains(text);
        });
    }
    static bool isAround(const Node &node, const FileUrls &excluded)
    {
        return std::any_of(excluded.begin(), excluded.end(),
                           [&](const FileUrl &url) { return isWithin(url.path(), node.path); });
    }
    /// An excluded link stands for what it leads to as well, past further links. Where calls may
    /// fail, that may not be found out.
    FileUrls withTargets(const FileUrls &excluded, OtherNames names) const
    {
        FileUrls all = excluded;
        for (qsizetype i = 0; names == OtherNames::Known && i < all.size(); ++i) {
            std::error_code error;
            const auto target = std::filesystem::read_symlink(native(all[i].path()), error);
            const QByteArray path = QByteArray::fromStdString(target.native());
            const auto isThere = [&](const FileUrl &url) { return url.path() == path; };
            if (!error && exists(path) && std::none_of(all.begin(), all.end(), isThere))
                all.append(FileUrl::fromPath(path, FileUrlKind::Folder));
        }
        return all;
    }
    /// By its place in the tree, or because it is an excluded item under another name.
    bool isKept(const Node &node, const FileUrls &excluded, OtherNames names) const
    {
        return std::any_of(excluded.begin(), excluded.end(), [&](const FileUrl &url) {
            const auto isThis = [&](const Node &other) { return other.path == url.path(); };
            const auto found = std::find_if(m_nodes.begin(), m_nodes.end(), isThis);
            return isWithin(node.path, url.path()) ||
                   (names == OtherNames::Known && found != m_nodes.end() &&
                    found->inode == node.inode);
        });
    }
    bool isInKeptPackage(const Node &node, const FileUrls &excluded) const
    {
        return std::any_of(m_nodes.begin(), m_nodes.end(), [&](const Node &package) {
            return package.isFolder && package.path.endsWith("P.app") &&
                   isWithin(node.path, package.path) && isAround(package, excluded);
        });
    }
    /// It was changed, or lies in a folder that may have come there: one that was changed, in one
    /// that was changed. `top` is what is cleaned.
    bool isLeftAsLater(const Node &node, const QByteArray &top) const
    {
        const auto mayHaveCome = [&](const Node &folder) {
            return folder.isFolder && folder.isLater && isWithin(node.path, folder.path) &&
                   folder.path != top && isWithin(folder.path, top) && isAroundLater(folder);
        };
        return (node.isLater && !node.isFolder) ||
               std::any_of(m_nodes.begin(), m_nodes.end(), mayHaveCome);
    }
    bool isAroundLater(const Node &node) const
    {
        const QByteArray around = node.path.first(node.path.lastIndexOf('/'));
        const auto isAround = [&](const Node &other) { return other.path == around; };
        const auto found = std::find_if(m_nodes.begin(), m_nodes.end(), isAround);
        return found == m_nodes.end() ? m_isLater : found->isLater;
    }
    void keepWithParents(QByteArray path, std::set<QByteArray> &kept) const
    {
        for (; path.size() > m_folder.size(); path.truncate(path.lastIndexOf('/')))
            kept.insert(path.sliced(m_folder.size() + 1));
    }

    QByteArray m_folder;
    QRandomGenerator &m_random;
    std::vector<Node> m_nodes;
    bool m_isLater = false; ///< the folder itself was changed after the confirmation
};
