#include "app/navigation/VNTViewController.h"

#include "platform/desktop/InterfaceLoader.h"
#include "tests/support/run/ChildProcess.h"
#include "tests/support/run/GuiTestMain.h"
#include "tests/support/run/LogRecorder.h"

#include <QFile>
#include <csignal>
#include <memory>
#include <stdexcept>

/// A page that writes down what is called.
class SamplePage : public VNTViewController
{
    Q_OBJECT

public:
    using VNTViewController::goBack;
    using VNTViewController::goForward;
    using VNTViewController::VNTViewController;

    void viewWillLoad() override
    {
        calls.append(QStringLiteral("willLoad %1").arg(isViewLoaded()));
    }
    void viewDidLoad() override { calls.append(QStringLiteral("didLoad %1").arg(isViewLoaded())); }

    QStringList calls;
};

class OtherSamplePage final : public SamplePage
{
    Q_OBJECT

public:
    using SamplePage::SamplePage;
};

class NoDescriptionPage final : public VNTViewController
{
    Q_OBJECT

public:
    using VNTViewController::VNTViewController;
};

class Wizard final : public QObject, public VNTViewControllerDelegate
{
    Q_OBJECT

public:
    void willGoForward(VNTViewController &page, bool forward, const QVariant &data) override
    {
        asked.append({&page, forward, data});
    }

    struct Move
    {
        VNTViewController *page;
        bool forward;
        QVariant data;
    };
    QList<Move> asked;
};

class TestVNTViewController final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void loadsTheDescriptionOfItsOwnClass();
    void loadsOnFirstUseAndOnce();
    void ownsItsView();
    void stopsWithoutADescription();
    void refusesAnotherDescription();
    void keepsTheDataHandedToIt();
    void asksItsDelegateToMove();
    void holdsItsDelegateWeakly();
    void answersEveryAppearanceCall();

private:
    QTemporaryDir m_folder;
    std::unique_ptr<InterfaceLoader> m_loader;
};

void TestVNTViewController::initTestCase()
{
    for (const char *name : {"SamplePage", "OtherSamplePage"}) {
        QFile file(m_folder.filePath(QStringLiteral("%1.ui").arg(QLatin1String(name))));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QStringLiteral("<ui version=\"4.0\"><class>%1</class>"
                                  "<widget class=\"QWidget\" name=\"view of %1\"/></ui>")
                       .arg(QLatin1String(name))
                       .toUtf8());
    }
    m_loader = std::make_unique<InterfaceLoader>(m_folder.path());
}

void TestVNTViewController::loadsTheDescriptionOfItsOwnClass()
{
    SamplePage page(*m_loader);
    OtherSamplePage other(*m_loader);
    QCOMPARE(page.view()->objectName(), QStringLiteral("view of SamplePage"));
    QCOMPARE(other.view()->objectName(), QStringLiteral("view of OtherSamplePage"));
}

void TestVNTViewController::loadsOnFirstUseAndOnce()
{
    SamplePage page(*m_loader);
    QVERIFY(!page.isViewLoaded());
    QVERIFY(page.calls.isEmpty());
    QWidget *const view = page.view();
    QVERIFY(page.isViewLoaded());
    QCOMPARE(page.view(), view);
    QCOMPARE(page.calls, (QStringList{QStringLiteral("willLoad 0"), QStringLiteral("didLoad 1")}));
}

void TestVNTViewController::ownsItsView()
{
    QWidget window;
    auto page = std::make_unique<SamplePage>(*m_loader);
    const QPointer<QWidget> view = page->view();
    view->setParent(&window);
    page.reset();
    QVERIFY(!view);
}

void TestVNTViewController::stopsWithoutADescription()
{
    const ChildOutcome child = runInChild(ChildUser::Same, [this] {
        NoDescriptionPage(*m_loader).view();
        return 0;
    });
    QCOMPARE(child.signal, SIGABRT);
    QVERIFY2(child.errorText.contains("NoDescriptionPage.ui"), child.errorText);
}

void TestVNTViewController::refusesAnotherDescription()
{
    OtherSamplePage page(*m_loader);
    const LogRecorder log;
    QVERIFY_THROWS_EXCEPTION(std::logic_error, page.initWithNibName(QStringLiteral("SamplePage")));
    QCOMPARE(log.lines(), QStringList{QStringLiteral(
                              "Illegal call made to -[OtherSamplePage initWithWindowNibName:], "
                              "call init instead")});
    try {
        page.initWithNibName(QStringLiteral("SamplePage"));
    } catch (const std::logic_error &error) {
        QVERIFY2(QByteArray(error.what()).contains("initWithNibName:bundle:"), error.what());
    }
    QVERIFY(!page.isViewLoaded());
}

void TestVNTViewController::keepsTheDataHandedToIt()
{
    SamplePage page(*m_loader);
    QVERIFY(!page.data().isValid());
    page.setData(qint64(5'000'000'000));
    QCOMPARE(page.data().toLongLong(), 5'000'000'000);
    page.setData({});
    QVERIFY(!page.data().isValid());
}

void TestVNTViewController::asksItsDelegateToMove()
{
    SamplePage page(*m_loader);
    page.goForward(); // no delegate to ask
    Wizard wizard;
    page.setDelegate(&wizard);
    QCOMPARE(page.delegate(), static_cast<VNTViewControllerDelegate *>(&wizard));
    page.goForward();
    page.goForward(qint64(7));
    page.goBack();
    QCOMPARE(wizard.asked.size(), 3);
    for (const Wizard::Move &move : std::as_const(wizard.asked))
        QCOMPARE(move.page, &page);
    QVERIFY(wizard.asked.at(0).forward);
    QVERIFY(!wizard.asked.at(0).data.isValid());
    QCOMPARE(wizard.asked.at(1).data, QVariant(qint64(7)));
    QVERIFY(!wizard.asked.at(2).forward);
    QVERIFY(!wizard.asked.at(2).data.isValid());
}

void TestVNTViewController::holdsItsDelegateWeakly()
{
    SamplePage page(*m_loader);
    auto wizard = std::make_unique<Wizard>();
    page.setDelegate(wizard.get());
    QVERIFY(page.delegate());
    wizard.reset();
    QVERIFY(!page.delegate());
    page.goForward();
}

void TestVNTViewController::answersEveryAppearanceCall()
{
    SamplePage page(*m_loader);
    BFViewController &answering = page;
    answering.viewWillAppear(true);
    answering.viewDidAppear(true);
    answering.viewWillDisappear(false);
    answering.viewDidDisappear(false);
    QVERIFY(page.calls.isEmpty()); // none of them loads the view
    QVERIFY(!page.isViewLoaded());
}

VANTOR_GUI_TEST_MAIN(TestVNTViewController)
#include "tst_VNTViewController.moc"
