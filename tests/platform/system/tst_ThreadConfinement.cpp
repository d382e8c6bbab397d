#include "platform/system/ThreadConfinement.h"

#include "platform/system/HostSystemCalls.h"
#include "platform/system/SystemCalls.h"
#include "tests/support/disk/ScratchFolder.h"
#include "tests/support/run/Confinement.h"
#include "tests/support/run/TestMain.h"

#include <cerrno>
#include <fcntl.h>
#include <functional>
#include <thread>

/// What the kernel lets a confined thread do. The folder "in" is allowed, "out" is not.
class TestThreadConfinement final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void removesBelowTheAllowedFolderOnly();
    void reachesNoFolderThatWasMovedOut();
    void opensNoFolderWithoutTheRight();
    void makesAndWritesNothingOutside();
    void needsTheConsentOfAllLayers();
    void leavesOtherThreadsAlone();
    void bindsTheThreadsThatItStarts();

private:
    FileDescriptor opened(const char *folder) const
    {
        return FileDescriptor(::open(m_scratch->path(folder).constData(), O_RDONLY | O_DIRECTORY));
    }
    /// The errno of the action on a thread that may only do this in "in", 0 for success.
    int errorOf(FolderRights rights, const std::function<SystemResult<void>()> &action) const;
    static int errorIn(const std::vector<int> &layers,
                       const std::function<SystemResult<void>()> &action);

    const SystemCalls &m_calls = hostSystemCalls();
    std::unique_ptr<ScratchFolder> m_scratch;
};

void TestThreadConfinement::init()
{
    VANTOR_NEEDS_CONFINEMENT;
    m_scratch = std::make_unique<ScratchFolder>();
    for (const char *folder : {"in/deep", "out/deep"})
        m_scratch->makeFolder(folder);
    for (const char *file : {"in/a", "in/deep/b", "out/a", "out/deep/b"})
        m_scratch->makeFile(file);
}

int TestThreadConfinement::errorIn(const std::vector<int> &layers,
                                   const std::function<SystemResult<void>()> &action)
{
    int error = -1;
    std::jthread([&] {
        for (const int rules : layers) {
            if (!hostConfinement().enterForGood(rules))
                return;
        }
        const auto done = action();
        error = done ? 0 : done.error();
    }).join();
    return error;
}

int TestThreadConfinement::errorOf(FolderRights rights,
                                   const std::function<SystemResult<void>()> &action) const
{
    const auto rules = hostConfinement().makeRules();
    if (!rules || !hostConfinement().allow(rules->get(), opened("in").get(), rights))
        return -1;
    return errorIn({rules->get()}, action);
}

void TestThreadConfinement::removesBelowTheAllowedFolderOnly()
{
    const FileDescriptor in = opened("in/deep");
    const FileDescriptor out = opened("out/deep");
    const auto remove = [&](const FileDescriptor &folder) {
        return errorOf(FolderRights::Emptying,
                       [&] { return m_calls.removeFile(folder.get(), "b"); });
    };
    QCOMPARE(remove(out), EACCES);
    QCOMPARE(remove(in), 0);
}

void TestThreadConfinement::reachesNoFolderThatWasMovedOut()
{
    const FileDescriptor folder = opened("in/deep");
    QVERIFY(::rename(m_scratch->path("in/deep").constData(),
                     m_scratch->path("out/moved").constData()) == 0);
    QCOMPARE(errorOf(FolderRights::Emptying, [&] { return m_calls.removeFile(folder.get(), "b"); }),
             EACCES);
}

void TestThreadConfinement::opensNoFolderWithoutTheRight()
{
    const FileDescriptor in = opened("in");
    const auto open = [&]() -> SystemResult<void> {
        const auto folder = m_calls.openFolder(in.get(), "deep", Descent::Strict);
        return folder ? SystemResult<void>() : tl::unexpected(folder.error());
    };
    QCOMPARE(errorOf(FolderRights::Emptying, open), 0);
    QCOMPARE(errorOf(FolderRights::Listing, open), 0);
    QCOMPARE(errorOf(FolderRights::RemovingEntries, open), EACCES);
    const auto remove = [&] { return m_calls.removeFile(in.get(), "a"); };
    QCOMPARE(errorOf(FolderRights::Listing, remove), EACCES);
    QCOMPARE(errorOf(FolderRights::RemovingEntries, remove), 0);
}

void TestThreadConfinement::makesAndWritesNothingOutside()
{
    const FileDescriptor out = opened("out");
    const auto make = [&]() -> SystemResult<void> {
        const auto file = m_calls.createFile(out.get(), "new");
        return file ? SystemResult<void>() : tl::unexpected(file.error());
    };
    const auto write = [&]() -> SystemResult<void> {
        const auto file = m_calls.createFile(out.get(), "a");
        return file ? SystemResult<void>() : tl::unexpected(file.error());
    };
    QCOMPARE(errorOf(FolderRights::Emptying, make), EACCES);
    QCOMPARE(errorOf(FolderRights::Emptying, write), EACCES);
    QCOMPARE(errorOf(FolderRights::Emptying,
                     [&] { return m_calls.moveToFree(out.get(), "a", "renamed"); }),
             EACCES);
}

void TestThreadConfinement::needsTheConsentOfAllLayers()
{
    const auto whole = hostConfinement().makeRules();
    const auto deep = hostConfinement().makeRules();
    QVERIFY(hostConfinement().allow(whole->get(), opened("in").get(), FolderRights::Emptying));
    QVERIFY(hostConfinement().allow(deep->get(), opened("in/deep").get(), FolderRights::Emptying));
    const FileDescriptor in = opened("in");
    const FileDescriptor inside = opened("in/deep");
    const std::vector<int> layers{whole->get(), deep->get()};
    QCOMPARE(errorIn(layers, [&] { return m_calls.removeFile(in.get(), "a"); }), EACCES);
    QCOMPARE(errorIn(layers, [&] { return m_calls.removeFile(inside.get(), "b"); }), 0);
}

void TestThreadConfinement::leavesOtherThreadsAlone()
{
    QCOMPARE(errorOf(FolderRights::Listing, [] { return SystemResult<void>(); }), 0);
    const FileDescriptor out = opened("out");
    QVERIFY(m_calls.removeFile(out.get(), "a"));
}

void TestThreadConfinement::bindsTheThreadsThatItStarts()
{
    const FileDescriptor out = opened("out");
    QCOMPARE(errorOf(FolderRights::Emptying,
                     [&] {
                         SystemResult<void> removed;
                         std::jthread([&] { removed = m_calls.removeFile(out.get(), "a"); }).join();
                         return removed;
                     }),
             EACCES);
}

VANTOR_TEST_MAIN(TestThreadConfinement)
#include "tst_ThreadConfinement.moc"
