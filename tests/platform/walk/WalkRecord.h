#pragma once

#include "platform/system/HostSystemCalls.h"
#include "platform/walk/DirectoryWalker.h"
#include "tests/support/disk/MadeTree.h"

#include <QByteArrayList>
#include <algorithm>
#include <deque>
#include <functional>

/// What a walk found, by paths relative to its start, sorted.
struct WalkRecord
{
    QByteArrayList found;
    QByteArrayList entered; ///< the start is ""
    QByteArrayList failed;  ///< "path: errno"
};

inline QByteArrayList sorted(QByteArrayList list)
{
    std::sort(list.begin(), list.end());
    return list;
}

/// Records its calls. Tests set what it answers and does.
class RecordingVisitor final : public DirectoryVisitor
{
public:
    std::function<bool(const QByteArray &path)> entersFolder;
    std::function<EntryDetail(const QByteArray &path)> detailOf;
    std::function<void(const WalkedEntry &entry)> onFound;
    WalkRecord record;

    bool shouldEnter(const WalkedFolder &parent, const char *name) override
    {
        return !entersFolder || entersFolder(parent.pathTo(name));
    }
    EntryDetail entered(const EnteredFolder &entered) override
    {
        record.entered.append(entered.folder.pathTo({}));
        return detailOf ? detailOf(record.entered.last()) : EntryDetail::Status;
    }
    void found(const WalkedEntry &entry) override
    {
        record.found.append(entry.folder.pathTo(entry.name));
        if (onFound)
            onFound(entry);
    }
    void failed(const WalkedFolder &folder, const char *name, int error) override
    {
        record.failed.append(folder.pathTo(name) + ": " + QByteArray::number(error));
    }
};

/// A walk over a made tree: a test sets it up and then runs it.
class RecordedWalk final
{
public:
    explicit RecordedWalk(const MadeTree &tree, unsigned threads = 1)
        : m_tree(tree), m_visitors(threads)
    {
    }

    WalkOptions options;
    std::reference_wrapper<const SystemCalls> calls = hostSystemCalls();
    std::stop_source stop;

    std::deque<RecordingVisitor> &visitors() { return m_visitors; }
    RecordingVisitor &visitor() { return m_visitors.front(); }

    WalkRecord run(const QByteArray &start = {})
    {
        std::vector<DirectoryVisitor *> team;
        for (RecordingVisitor &visitor : m_visitors)
            team.push_back(&visitor);
        walkDirectory(calls, m_tree.open(start), options, stop.get_token(), team);

        WalkRecord all;
        for (RecordingVisitor &visitor : m_visitors) {
            all.found += visitor.record.found;
            all.entered += visitor.record.entered;
            all.failed += visitor.record.failed;
        }
        for (QByteArrayList *list : {&all.found, &all.entered, &all.failed})
            std::sort(list->begin(), list->end());
        return all;
    }

private:
    const MadeTree &m_tree;
    std::deque<RecordingVisitor> m_visitors;
};
