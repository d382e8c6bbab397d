#include "chart/PieChartAccessible.h"
#include "tests/chart/FakeSlices.h"
#include "tests/support/run/GuiTestMain.h"

#include <QAccessible>
#include <QPushButton>

namespace {

QList<std::pair<QAccessible::Event, int>> s_events;

void keepEvent(QAccessibleEvent *event)
{
    s_events << std::pair(event->type(), event->child());
}

std::shared_ptr<Info> labelled(const char *name, const char *size)
{
    return std::make_shared<Info>(QString::fromLatin1(name), std::nullopt, std::nullopt,
                                  QString::fromLatin1(size));
}

} // namespace

class TestPieChartAccessible final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { installPieChartAccessibility(); }
    void init();
    void cleanup();

    void isAListOfItsSlices();
    void namesSlicesByTheirLabels();
    void holdsTheWidgetsInItToo();
    void findsTheSliceUnderAPoint();
    void knowsWhereSlicesAre();
    void pressesASliceAsAClickDoes();
    void offersNothingWhereNothingCanBeChosen();
    void saysWhichSlicesAreOn();
    void movesTheFocus();
    void tellsOfTheFocusAndOfSizesThatArrive();
    void knowsWhenASliceIsGone();
    void answersNothingWhileTheChartIsDestroyed();

private:
    QAccessibleInterface *list() { return QAccessible::queryAccessibleInterface(&m_held->chart); }
    QAccessibleInterface *slice(int index) { return list()->child(index); }
    QAccessible::State stateOf(int index) { return slice(index)->state(); }

    std::unique_ptr<HeldChart> m_held;
};

void TestPieChartAccessible::init()
{
    QAccessible::setActive(true);
    m_held = std::make_unique<HeldChart>();
    FakeSlices &page = m_held->page;
    page.setValues({1, 1, 2});
    page.slices[0].info = labelled("Trash", "1.2 GB");
    page.slices[2].info = labelled("", "0");
    page.slices[2].accessibleName = QStringLiteral("Visit us");
    page.selectable = {0, 2};
    m_held->chart.setAnimationSpeed(0);
    m_held->chart.reloadData();
    awaitBackgroundThreads();
    QCoreApplication::sendPostedEvents();
    m_held->window.show();
    m_held->window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&m_held->window));
    s_events.clear();
    QAccessible::installUpdateHandler(keepEvent);
}

void TestPieChartAccessible::cleanup()
{
    QAccessible::installUpdateHandler(nullptr);
    m_held.reset();
}

void TestPieChartAccessible::isAListOfItsSlices()
{
    QCOMPARE(list()->role(), QAccessible::List);
    QCOMPARE(list()->childCount(), 3);
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(slice(i)->role(), QAccessible::ListItem);
        QCOMPARE(slice(i)->parent(), list());
        QCOMPARE(list()->indexOfChild(slice(i)), i);
        QVERIFY(slice(i)->isValid());
    }
    QVERIFY(!list()->child(3));
    QVERIFY(!list()->child(-1));
}

void TestPieChartAccessible::namesSlicesByTheirLabels()
{
    QCOMPARE(slice(0)->text(QAccessible::Name), QStringLiteral("Trash, 1.2 GB"));
    QCOMPARE(slice(1)->text(QAccessible::Name), QStringLiteral("25 percent"));
    QCOMPARE(slice(2)->text(QAccessible::Name), QStringLiteral("Visit us"));
    QCOMPARE(slice(0)->text(QAccessible::Description), QString());
}

void TestPieChartAccessible::holdsTheWidgetsInItToo()
{
    QPushButton button(QStringLiteral("Info"), &m_held->chart);
    button.setGeometry(10, 10, 20, 20);
    button.show();
    QCOMPARE(list()->childCount(), 4);
    QCOMPARE(list()->child(3)->text(QAccessible::Name), QStringLiteral("Info"));
    QCOMPARE(list()->indexOfChild(list()->child(3)), 3);
    const QPoint on = button.mapToGlobal(QPoint(5, 5));
    QCOMPARE(list()->childAt(on.x(), on.y()), list()->child(3));
}

void TestPieChartAccessible::findsTheSliceUnderAPoint()
{
    const auto at = [this](QPoint point) {
        const QPoint global = m_held->chart.mapToGlobal(point);
        return list()->childAt(global.x(), global.y());
    };
    QCOMPARE(at({150, 100}), slice(0));
    QCOMPARE(at({250, 200}), slice(2));
    QVERIFY(!at({5, 5}));
}

void TestPieChartAccessible::knowsWhereSlicesAre()
{
    const QRect rect = slice(0)->rect();
    QVERIFY(rect.contains(m_held->chart.mapToGlobal(QPoint(150, 100))));
    QVERIFY(!rect.contains(m_held->chart.mapToGlobal(QPoint(250, 200))));
}

void TestPieChartAccessible::pressesASliceAsAClickDoes()
{
    QAccessibleActionInterface *actions = slice(0)->actionInterface();
    QVERIFY(actions);
    QVERIFY(actions->actionNames().contains(QAccessibleActionInterface::pressAction()));
    actions->doAction(QAccessibleActionInterface::pressAction());
    QCOMPARE(m_held->page.selected, QList<int>{0});
}

void TestPieChartAccessible::offersNothingWhereNothingCanBeChosen()
{
    QCOMPARE(slice(1)->actionInterface()->actionNames(), QStringList());
    slice(1)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    QCOMPARE(m_held->page.selected, QList<int>());
    QVERIFY(!stateOf(1).focusable);
}

void TestPieChartAccessible::saysWhichSlicesAreOn()
{
    QVERIFY(stateOf(0).checkable && stateOf(0).checked);
    m_held->page.slices[0].info->setIsOn(false);
    QVERIFY(stateOf(0).checkable && !stateOf(0).checked);
    QVERIFY(!stateOf(1).checkable);
    QVERIFY(!stateOf(2).checkable); // a picture that leads elsewhere
}

void TestPieChartAccessible::movesTheFocus()
{
    slice(2)->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
    QVERIFY(m_held->chart.hasFocus());
    QCOMPARE(m_held->chart.interaction().focusedSlice(), 2);
    QVERIFY(stateOf(2).focused && !stateOf(0).focused);
    QCOMPARE(list()->focusChild(), slice(2));
}

void TestPieChartAccessible::tellsOfTheFocusAndOfSizesThatArrive()
{
    // Off screen no assistive technology listens, so Qt passes nothing on; on a display the test
    // gets the event.
    const bool isHeard = QAccessible::isActive();
    m_held->chart.setFocus();
    QTest::keyClick(&m_held->chart, Qt::Key_Home);
    QCOMPARE(s_events.contains(std::pair(QAccessible::Focus, 0)), isHeard);
    s_events.clear();
    m_held->page.slices[0].info->setFileSizeString(QStringLiteral("9 GB"));
    m_held->chart.reloadData();
    QCOMPARE(s_events.contains(std::pair(QAccessible::StateChanged, 0)), isHeard);
    QTRY_COMPARE(slice(0)->text(QAccessible::Name), QStringLiteral("Trash, 9 GB"));
    QCOMPARE(s_events.contains(std::pair(QAccessible::NameChanged, 0)), isHeard);
}

void TestPieChartAccessible::knowsWhenASliceIsGone()
{
    QAccessibleInterface *third = slice(2);
    m_held->page.setValues({1, 1});
    m_held->chart.reloadData();
    QVERIFY(!third->isValid());
    QCOMPARE(third->text(QAccessible::Name), QString());
    QVERIFY(third->state().invalid);
    QCOMPARE(third->rect(), QRect());
    QCOMPARE(list()->childCount(), 2);
}

void TestPieChartAccessible::answersNothingWhileTheChartIsDestroyed()
{
    FakeSlices page;
    page.setValues({1, 1});
    auto chart = std::make_unique<PieChart>(QRect(0, 0, 400, 300));
    chart->setDataSource(&page);
    QAccessibleInterface *first = nullptr;
    bool isAsked = false;
    // This runs before the interfaces are destroyed, when the chart is only a widget.
    connect(chart.get(), &QObject::destroyed, this, [&] {
        isAsked = true;
        QVERIFY(!first->isValid());
        QCOMPARE(first->text(QAccessible::Name), QString());
        QCOMPARE(first->actionInterface()->actionNames(), QStringList());
        QVERIFY(!first->window());
    });
    chart->reloadData();
    first = QAccessible::queryAccessibleInterface(chart.get())->child(0);
    QVERIFY(first->isValid());
    chart.reset();
    QVERIFY(isAsked);
}

VANTOR_GUI_TEST_MAIN(TestPieChartAccessible)
#include "tst_PieChartAccessible.moc"
