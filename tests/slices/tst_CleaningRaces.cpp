#include "tests/slices/CleaningKit.h"
#include "tests/slices/HookedCalls.h"
#include "tests/support/TestMain.h"

#include <functional>

namespace {

/// Does something hostile right before one of the calls, so that every moment is tried on purpose.
class Interloper final : public HookedCalls
{
public:
    Interloper(int call, std::function<void()> action) : m_call(call), m_action(std::move(action))
    {
    }

    bool isInMemory(int) const override { return true; } // one thread: the same calls every time
    std::optional<int> before(const char *, int, const char *) const override
    {
        if (m_count++ == m_call)
            m_action();
        return {};
    }
    int count() const { return m_count; }

private:
    int m_call;
    std::function<void()> m_action;
    mutable int m_count = 0;
};

void move(const QByteArray &from, const QByteArray &to)
{
    std::error_code ignored; // what is gone already cannot be moved any more
    std::filesystem::rename(native(from), native(to), ignored);
}

} // namespace

class TestCleaningRaces final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void losesNothingOutside_data();
    void losesNothingOutside();
    void doesNotFollowAFolderThatWasMovedAway();
    void removesNothingAsWhatItWasNotListedAs_data();
    void removesNothingAsWhatItWasNotListedAs();

private:
    using Action = std::function<void(const QByteArray &scratch)>;
    int cleanWith(int call, const Action &action);
};

Q_DECLARE_METATYPE(std::function<void(const QByteArray &)>)

void TestCleaningRaces::losesNothingOutside_data()
{
    QTest::addColumn<Action>("action");
    const QByteArray folders[] = {"home/Downloads", "home/Downloads/b", "home/Downloads/b/c",
                                  "home/Downloads/way", "home/Downloads/b/c/d"};
    for (const QByteArray &folder : folders) {
        QTest::addRow("link for %s", folder.constData()) << Action([=](const QByteArray &scratch) {
            move(scratch + '/' + folder, scratch + "/aside");
            if (!exists(scratch + '/' + folder))
                makeLink(scratch + '/' + folder, scratch + "/outside");
        });
        QTest::addRow("file for %s", folder.constData()) << Action([=](const QByteArray &scratch) {
            move(scratch + '/' + folder, scratch + "/aside");
            if (!exists(scratch + '/' + folder))
                makeFile(scratch + '/' + folder);
        });
        QTest::addRow("moved out %s", folder.constData()) << Action([=](const QByteArray &scratch) {
            move(scratch + '/' + folder, scratch + "/outside/moved");
        });
        QTest::addRow("moved in %s", folder.constData()) << Action([=](const QByteArray &scratch) {
            move(scratch + "/home/Downloads/way/Keep", scratch + '/' + folder + "/Renamed");
        });
    }
    QTest::addRow("link for a file") << Action([](const QByteArray &scratch) {
        move(scratch + "/home/Downloads/a", scratch + "/aside");
        makeLink(scratch + "/home/Downloads/a", scratch + "/outside/a");
    });
    QTest::addRow("new file inside")
        << Action([](const QByteArray &scratch) { makeFile(scratch + "/home/Downloads/b/c/new"); });
}

/// Cleans the small tree with the action before the given call; the number of calls, or -1 when
/// something was lost.
int TestCleaningRaces::cleanWith(int call, const Action &action)
{
    const CleaningGround scratch;
    const QByteArray home = scratch / "home";
    // The same names outside as inside, so that a step too far would find something to remove.
    for (const char *name : {"a", "b/e", "b/c/f", "b/c/d/g", "way/Keep/h", "way/i"}) {
        makeFile(home + "/Downloads/" + name);
        makeFile(scratch / "outside/" + name, "precious");
    }
    const GrantedFolder granted(home);
    const Interloper calls(call, [&] { action(scratch.path()); });
    const LogRecorder silenced;
    clean(granted, {contentsOf({granted.folder("Downloads")})},
          excluding({granted.folder("Downloads/way/Keep")}), calls);

    int precious = 0;
    int kept = 0;
    for (const auto &entry :
         std::filesystem::recursive_directory_iterator(native(scratch.path()))) {
        precious +=
            entry.is_regular_file() && !entry.is_symlink() && entry.file_size() == 8 ? 1 : 0;
        kept += entry.path().filename() == "h" && entry.file_size() == 1 ? 1 : 0;
    }
    return precious == 6 && kept == 1 ? calls.count() : -1;
}

void TestCleaningRaces::losesNothingOutside()
{
    QFETCH(Action, action);
    const int calls = cleanWith(-1, action);
    QVERIFY(calls > 30);
    for (int call = 0; call < calls; ++call)
        QVERIFY2(cleanWith(call, action) >= 0, "before call " + QByteArray::number(call));
}

/// Of a deep tree the outer folders are not held open. One of them is moved to a place whose items
/// have the very names that still wait to be removed.
void TestCleaningRaces::doesNotFollowAFolderThatWasMovedAway()
{
    const CleaningGround scratch;
    const QByteArray top = scratch / "home/Downloads/1/2";
    const QByteArray deep = top + "/3/4/5/6/7/8/9/10/11/12/13/14/15/16/17/18";
    const auto makeAll = [&] {
        for (const char *name : {"0", "x", "y", "z"}) { // listed on both sides of "3", at any order
            makeFile(top + '/' + name);
            makeFile(scratch / "outside/" + name, "precious");
        }
        makeFile(deep + "/file");
    };
    makeAll();
    const GrantedFolder granted(scratch / "home");
    const auto cleanOnce = [&](int call) {
        const Interloper calls(call, [&] { move(top + "/3", scratch / "outside/3"); });
        const CleaningReport report =
            clean(granted, {contentsOf({granted.folder("Downloads")})}, {}, calls);
        const bool isTold = exists(top) == !report.refusals.isEmpty();
        return std::pair(calls.count(), isTold);
    };
    const LogRecorder silenced;
    const int calls = cleanOnce(-1).first;
    int refused = 0;
    for (int call = 0; call < calls; ++call) {
        makeAll();
        QVERIFY(cleanOnce(call).second);
        for (const char *name : {"0", "x", "y", "z"})
            QVERIFY2(exists(scratch / "outside/" + name), QByteArray::number(call));
        refused += exists(top) ? 1 : 0;
        std::filesystem::remove_all(native(scratch / "home/Downloads/1"));
        std::filesystem::remove_all(native(scratch / "outside/3"));
    }
    QVERIFY(refused > 10); // the way back was lost, and that was noticed
}

void TestCleaningRaces::removesNothingAsWhatItWasNotListedAs_data()
{
    QTest::addColumn<QByteArray>("call");
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("replacement");
    QTest::addRow("file, now a folder")
        << QByteArray("removeFile") << QByteArray("file") << QByteArray("folder");
    QTest::addRow("folder, now a file")
        << QByteArray("openFolder") << QByteArray("folder") << QByteArray("file");
    QTest::addRow("folder, now a link")
        << QByteArray("openFolder") << QByteArray("folder") << QByteArray("link");
    QTest::addRow("emptied folder, now a file")
        << QByteArray("removeFolder") << QByteArray("folder") << QByteArray("file");
    QTest::addRow("emptied folder, now a link")
        << QByteArray("removeFolder") << QByteArray("folder") << QByteArray("link");
}

void TestCleaningRaces::removesNothingAsWhatItWasNotListedAs()
{
    class Swapper final : public HookedCalls
    {
    public:
        Swapper(const QByteArray &call, const QByteArray &name, std::function<void()> swap)
            : m_call(call), m_name(name), m_swap(std::move(swap))
        {
        }
        std::optional<int> before(const char *call, int, const char *name) const override
        {
            if (m_call == call && m_name == name)
                m_swap();
            return {};
        }

    private:
        QByteArray m_call;
        QByteArray m_name;
        std::function<void()> m_swap;
    };
    QFETCH(QByteArray, call);
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, replacement);
    const CleaningGround scratch;
    const QByteArray place = scratch / ("home/Downloads/" + name);
    if (name == "folder")
        makeFile(place + "/inside");
    else
        makeFile(place);
    const auto swap = [&] {
        move(place, scratch / "aside");
        if (replacement == "folder")
            makeFolder(place);
        else if (replacement == "link")
            makeLink(place, scratch / "outside");
        else
            makeFile(place);
    };
    const GrantedFolder granted(scratch / "home");
    const CleaningReport report =
        clean(granted, {contentsOf({granted.folder("Downloads")})}, {}, Swapper(call, name, swap));
    QVERIFY(exists(place));
    QCOMPARE(report.failures.size() + report.refusals.size(), 1);
    QCOMPARE(report.failures.isEmpty() ? report.refusals.first().path
                                       : report.failures.first().path,
             place);
}

VANTOR_TEST_MAIN(TestCleaningRaces)
#include "tst_CleaningRaces.moc"
