#include "slices/removal/AsideSearch.h"
#include "tests/slices/kit/CleaningKit.h"
#include "tests/support/calls/HookedSystem.h"
#include "tests/support/run/TestMain.h"

#include <cerrno>

class TestAsideSearch final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_scratch = std::make_unique<CleaningGround>();
        m_home = *m_scratch / "home";
        makeFile(m_home + "/.vantor-aside.here");
        makeFile(m_home + "/a/b/.vantor-aside.deep");
        makeFile(m_home + "/a/.vantor-aside.folder/inside");
        makeFile(m_home + "/a/file");
    }

    void findsWhatWasLeftInATree();
    void staysInOneFolder();
    void followsNoLink();
    void takesNoNameFromAnother();
    void saysWhenItCouldNotSeeAll_data();
    void saysWhenItCouldNotSeeAll();

private:
    AnchoredPath path(const QByteArray &relative) const
    {
        return {std::make_shared<const FileDescriptor>(openedFolder(m_home)), relative};
    }

    std::unique_ptr<CleaningGround> m_scratch;
    QByteArray m_home;
};

void TestAsideSearch::findsWhatWasLeftInATree()
{
    AsideSearch search(hostSystemCalls(), {}, {});
    search.lookThrough(path({}));
    QCOMPARE(tree(m_home), std::set<QByteArray>({"here", "a", "a/b", "a/b/deep", "a/folder",
                                                 "a/folder/inside", "a/file"}));
    QCOMPARE(search.found(), QByteArrayList({".vantor-aside.here", "a/.vantor-aside.folder",
                                             "a/b/.vantor-aside.deep"}));
    QVERIFY(search.left().isEmpty() && search.isComplete());
}

void TestAsideSearch::staysInOneFolder()
{
    AsideSearch search(hostSystemCalls(), {}, {});
    search.lookIn(path("a"));
    QCOMPARE(search.found(), QByteArrayList{"a/.vantor-aside.folder"});
    QVERIFY(exists(m_home + "/.vantor-aside.here"));
    QVERIFY(exists(m_home + "/a/b/.vantor-aside.deep"));
}

void TestAsideSearch::followsNoLink()
{
    makeFile(*m_scratch / "outside/.vantor-aside.file");
    makeLink(m_home + "/a/link", *m_scratch / "outside");
    AsideSearch search(hostSystemCalls(), {}, {});
    search.lookThrough(path({}));
    search.lookIn(path("a/link"));
    QVERIFY(exists(*m_scratch / "outside/.vantor-aside.file"));
    QVERIFY(search.isComplete());
}

void TestAsideSearch::takesNoNameFromAnother()
{
    makeFile(m_home + "/here", "the user's own");
    AsideSearch search(hostSystemCalls(), {}, {});
    search.lookIn(path({}));
    QCOMPARE(search.left(), QByteArrayList{".vantor-aside.here"});
    QVERIFY(exists(m_home + "/.vantor-aside.here"));
    QCOMPARE(std::filesystem::file_size(native(m_home + "/here")), std::uintmax_t(14));
}

void TestAsideSearch::saysWhenItCouldNotSeeAll_data()
{
    QTest::addColumn<int>("error");
    QTest::addColumn<bool>("isComplete");
    QTest::addRow("refused") << EACCES << false;
    QTest::addRow("broken") << EIO << false;
    QTest::addRow("gone") << ENOENT << true;
    QTest::addRow("another volume") << EXDEV << true;
}

void TestAsideSearch::saysWhenItCouldNotSeeAll()
{
    QFETCH(int, error);
    QFETCH(bool, isComplete);
    HookedSystem calls(
        [&](int, std::string_view name) { return name == "openFolder" ? error : 0; });
    AsideSearch search(calls, {}, {});
    search.lookThrough(path("a"));
    QCOMPARE(search.isComplete(), isComplete);
    QVERIFY(search.found().isEmpty());
    std::stop_source stop;
    stop.request_stop();
    AsideSearch stopped(hostSystemCalls(), {}, stop.get_token());
    stopped.lookThrough(path({}));
    QVERIFY(!stopped.isComplete() && stopped.found().isEmpty());
}

VANTOR_TEST_MAIN(TestAsideSearch)
#include "tst_AsideSearch.moc"
