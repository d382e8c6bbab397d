#include "platform/system/HostSystemCalls.h"
#include "slices/sizing/FolderSizing.h"
#include "tests/support/disk/MadeTree.h"
#include "tests/support/run/Administrator.h"
#include "tests/support/run/ChildProcess.h"
#include "tests/support/run/TestMain.h"

#include <QByteArrayList>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr unsigned kRoot = 0;

/// Removes in a simple way everything that is not hidden and that this process can remove; the
/// folders themselves stay. Returns the removed bytes.
qint64 removeWhatGoes(int folder)
{
    qint64 bytes = 0;
    DIR *listing = ::fdopendir(::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (listing == nullptr)
        return 0;
    while (const dirent *entry = ::readdir(listing)) {
        struct stat status
        {
        };
        const char *name = entry->d_name;
        if (name[0] == '.' || ::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0)
            continue;
        if (!S_ISDIR(status.st_mode)) {
            bytes += ::unlinkat(folder, name, 0) == 0 ? status.st_size : 0;
            continue;
        }
        const FileDescriptor child(::openat(folder, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (child.isValid())
            bytes += removeWhatGoes(child.get());
    }
    ::closedir(listing);
    return bytes;
}

/// A tree whose folders and files have owners, rights and attributes of all kinds.
class RandomTree final
{
public:
    explicit RandomTree(unsigned seed) : m_random(seed)
    {
        QByteArrayList folders{""};
        constexpr int kItems = 120;
        for (int i = 0; i < kItems; ++i) {
            const QByteArray in = folders.at(pick(folders.size()));
            const QByteArray path =
                (in.isEmpty() ? in : in + '/') + (pick(12) == 0 ? "." : "") + QByteArray::number(i);
            if (pick(3) == 0)
                folders.append(path);
            grow(path, folders.last() == path);
        }
        // From the bottom up: a locked folder accepts nothing new.
        for (auto path = folders.rbegin(); path != folders.rend(); ++path) {
            if (!path->isEmpty())
                restrict(*path);
        }
    }

    const MadeTree &tree() const { return m_tree; }

private:
    unsigned pick(std::size_t choices) { return static_cast<unsigned>(m_random() % choices); }

    void grow(const QByteArray &path, bool isFolder)
    {
        if (isFolder)
            return m_tree.makeFolder(path);
        const bool isLink = pick(6) == 0;
        if (isLink)
            m_tree.makeLink(path, "/etc");
        else
            m_tree.makeFile(path, 1 + pick(1'000'000));
        if (pick(2) == 0)
            m_tree.setOwner(path, kNobody);
        if (!isLink)
            lockAtTimes(path);
    }

    void lockAtTimes(const QByteArray &path)
    {
        if (pick(10) == 0)
            m_tree.setAttribute(path, pick(2) == 0 ? Attribute::Immutable : Attribute::AppendOnly);
    }

    void restrict(const QByteArray &path)
    {
        const unsigned modes[] = {0777, 0777, 0777, 01777, 01777, 0755, 0700, 0555, 0311, 0000};
        m_tree.setOwner(path, pick(2) == 0 ? kNobody : kRoot);
        m_tree.setMode(path, modes[pick(std::size(modes))]);
        lockAtTimes(path);
    }

    std::mt19937 m_random;
    MadeTree m_tree;
};

} // namespace

/// The figure that is promised is what a removal really frees.
class TestFolderSizingTruth final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void countsExactlyWhatCanBeRemoved_data();
    void countsExactlyWhatCanBeRemoved();
};

void TestFolderSizingTruth::countsExactlyWhatCanBeRemoved_data()
{
    QTest::addColumn<unsigned>("seed");
    for (unsigned seed = 1; seed <= 40; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

void TestFolderSizingTruth::countsExactlyWhatCanBeRemoved()
{
    VANTOR_NEEDS_ADMINISTRATOR();
    QFETCH(unsigned, seed);
    const RandomTree random(seed);
    const MadeTree &tree = random.tree();
    // First as an ordinary user, then as the administrator with what was left.
    for (const ChildUser user : {ChildUser::Nobody, ChildUser::Same}) {
        const ChildOutcome outcome = runInChild(user, [&] {
            // One thread: the child of a process with several threads must start none.
            const qint64 measured =
                measureFolder(hostSystemCalls(), {tree.descriptor(), {}}, {}, 1).bytes;
            const qint64 removed = removeWhatGoes(tree.descriptor()->get());
            if (measured != removed)
                std::fprintf(stderr, "measured %lld, removed %lld",
                             static_cast<long long>(measured), static_cast<long long>(removed));
            return removed > 0 ? 0 : 1;
        });
        QCOMPARE(outcome.errorText, QByteArray());
        QCOMPARE(outcome.exitCode, 0);
    }
}

VANTOR_TEST_MAIN(TestFolderSizingTruth)
#include "tst_FolderSizingTruth.moc"
