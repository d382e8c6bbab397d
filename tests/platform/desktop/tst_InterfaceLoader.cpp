#include "platform/desktop/InterfaceLoader.h"

#include "tests/support/run/ChildProcess.h"
#include "tests/support/run/GuiTestMain.h"

#include <QAction>
#include <QFile>
#include <QLabel>
#include <QLayout>
#include <QMainWindow>
#include <QPushButton>
#include <csignal>

/// A widget class of a program, as descriptions use it.
class Gauge : public QFrame
{
    Q_OBJECT
    Q_PROPERTY(QColor color READ color WRITE setColor)

public:
    explicit Gauge(QWidget *parent) : QFrame(parent) {}

    QColor color() const { return m_color; }
    void setColor(const QColor &color) { m_color = color; }

private:
    QColor m_color;
};

/// A window with a slot that its description names.
class GaugeWindow final : public QMainWindow
{
    Q_OBJECT

public:
    explicit GaugeWindow(QWidget *parent) : QMainWindow(parent) {}

    int presses = 0;

public Q_SLOTS:
    void on_press_clicked() { ++presses; }
};

class TestInterfaceLoader final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void loadsTheDescriptionOfAClass();
    void makesTheProgramsOwnClasses();
    void makesOwnClassesAsTheRoot();
    void givesEveryLoadItsOwnWidgets();
    void saysWhichDescriptionIsMissing();
    void saysWhereADescriptionIsBroken();
    void saysWhichClassNobodyRegistered();
    void recoversFromABrokenDescription();
    void leavesThePluginPathsAlone();
    void findsOutlets();
    void stopsAtAMissingOutlet();
    void stopsAtAnOutletOfAnotherType();

private:
    void describe(const char *className, const char *widgets, const char *rootClass = "QWidget");

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<InterfaceLoader> m_loader;
};

void TestInterfaceLoader::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_loader = std::make_unique<InterfaceLoader>(m_folder->path());
}

void TestInterfaceLoader::describe(const char *className, const char *widgets,
                                   const char *rootClass)
{
    QFile file(m_folder->filePath(QStringLiteral("%1.ui").arg(QLatin1String(className))));
    QVERIFY(file.open(QIODevice::WriteOnly));
    const QString text =
        QStringLiteral(R"(<?xml version="1.0" encoding="UTF-8"?>
<ui version="4.0">
 <class>%1</class>
 <widget class="%3" name="%1">
  <property name="geometry"><rect><x>0</x><y>0</y><width>700</width><height>560</height></rect></property>
%2
 </widget>
 <customwidgets>
  <customwidget><class>Gauge</class><extends>QFrame</extends><header>Gauge.h</header></customwidget>
  <customwidget><class>GaugeWindow</class><extends>QMainWindow</extends><header>G.h</header></customwidget>
 </customwidgets>
</ui>
)")
            .arg(QLatin1String(className), QLatin1String(widgets), QLatin1String(rootClass));
    file.write(text.toUtf8());
}

void TestInterfaceLoader::loadsTheDescriptionOfAClass()
{
    describe("SomePage", R"(
  <layout class="QVBoxLayout" name="column">
   <item><widget class="QLabel" name="title"><property name="text"><string>Hello</string></property></widget></item>
   <item><widget class="Line" name="line"><property name="orientation"><enum>Qt::Horizontal</enum></property></widget></item>
   <item><layout class="QHBoxLayout" name="row"><item><widget class="QTableView" name="table"/></item></layout></item>
  </layout>)");
    const LoadedInterface page = m_loader->load(QStringLiteral("SomePage"));
    QVERIFY2(page, page ? "" : qPrintable(page.error().text));
    QCOMPARE((*page)->objectName(), QStringLiteral("SomePage"));
    QCOMPARE((*page)->size(), QSize(700, 560));
    QCOMPARE(outlet<QLabel>(**page, "title")->text(), QStringLiteral("Hello"));
    QVERIFY(outlet<QFrame>(**page, "line"));
    QVERIFY(outlet<QLayout>(**page, "row"));
}

void TestInterfaceLoader::makesTheProgramsOwnClasses()
{
    m_loader->registerClass<Gauge>();
    describe("SomePage", R"(
  <widget class="Gauge" name="gauge">
   <property name="color"><color><red>21</red><green>106</green><blue>202</blue></color></property>
   <widget class="QPushButton" name="inside"/>
  </widget>)");
    const LoadedInterface page = m_loader->load(QStringLiteral("SomePage"));
    QVERIFY2(page, page ? "" : qPrintable(page.error().text));
    const auto *const gauge = outlet<Gauge>(**page, "gauge");
    QCOMPARE(gauge->color(), QColor(21, 106, 202));
    QCOMPARE(outlet<QPushButton>(**page, "inside")->parentWidget(), gauge);
}

void TestInterfaceLoader::makesOwnClassesAsTheRoot()
{
    m_loader->registerClass<GaugeWindow>();
    describe("GaugeWindow", R"(
  <widget class="QWidget" name="content"><widget class="QPushButton" name="press"/></widget>
  <widget class="QMenuBar" name="menus"><widget class="QMenu" name="menu"><addaction name="act"/></widget><addaction name="menu"/></widget>
  <action name="act"><property name="shortcut"><string>Ctrl+K</string></property></action>)",
             "GaugeWindow");
    const LoadedInterface loaded = m_loader->load(QStringLiteral("GaugeWindow"));
    QVERIFY2(loaded, loaded ? "" : qPrintable(loaded.error().text));
    auto *const window = outlet<GaugeWindow>(**loaded, "GaugeWindow");
    QCOMPARE(window, loaded->get());
    QCOMPARE(window->centralWidget(), outlet<QWidget>(*window, "content"));
    QCOMPARE(outlet<QAction>(*window, "act")->shortcut(), QKeySequence(QStringLiteral("Ctrl+K")));
    outlet<QPushButton>(*window, "press")->click();
    QCOMPARE(window->presses, 1);
}

void TestInterfaceLoader::givesEveryLoadItsOwnWidgets()
{
    describe("SomePage", R"(<widget class="QLabel" name="title"/>)");
    const LoadedInterface one = m_loader->load(QStringLiteral("SomePage"));
    const LoadedInterface two = m_loader->load(QStringLiteral("SomePage"));
    QVERIFY(one && two);
    QVERIFY(outlet<QLabel>(**one, "title") != outlet<QLabel>(**two, "title"));
}

void TestInterfaceLoader::saysWhichDescriptionIsMissing()
{
    const LoadedInterface page = m_loader->load(QStringLiteral("Absent"));
    QVERIFY(!page);
    QCOMPARE(page.error().file, m_folder->filePath(QStringLiteral("Absent.ui")));
    QVERIFY(!page.error().text.isEmpty());
}

void TestInterfaceLoader::saysWhereADescriptionIsBroken()
{
    QFile file(m_folder->filePath(QStringLiteral("Cut.ui")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("<ui version=\"4.0\">\n<widget class=\"QWidget\" name=\"Cut\">\n<widge");
    file.close();
    const LoadedInterface page = m_loader->load(QStringLiteral("Cut"));
    QVERIFY(!page);
    QVERIFY2(page.error().text.contains(QStringLiteral("line 3")), qPrintable(page.error().text));
}

void TestInterfaceLoader::saysWhichClassNobodyRegistered()
{
    describe("SomePage", R"(<widget class="Gauge" name="gauge"/>)");
    const LoadedInterface page = m_loader->load(QStringLiteral("SomePage"));
    QVERIFY(!page);
    QVERIFY2(page.error().text.contains(QStringLiteral("Gauge")), qPrintable(page.error().text));
}

void TestInterfaceLoader::recoversFromABrokenDescription()
{
    describe("SomePage", R"(<widget class="Gauge" name="gauge"/>)");
    QVERIFY(!m_loader->load(QStringLiteral("SomePage")));
    m_loader->registerClass<Gauge>();
    QVERIFY(m_loader->load(QStringLiteral("SomePage")));
}

/// The plugin paths are set aside only while the reader looks for plugins of interface designers.
void TestInterfaceLoader::leavesThePluginPathsAlone()
{
    const QStringList before = QCoreApplication::libraryPaths();
    const InterfaceLoader loader;
    QCOMPARE(QCoreApplication::libraryPaths(), before);
    QVERIFY(!before.isEmpty());
}

void TestInterfaceLoader::findsOutlets()
{
    QWidget page;
    page.setObjectName(QStringLiteral("page"));
    auto *const title = new QLabel(&page);
    title->setObjectName(QStringLiteral("title"));
    QCOMPARE(outlet<QLabel>(page, "title"), title);
    QCOMPARE(outlet<QWidget>(page, "title"), title);
    QCOMPARE(outlet<QWidget>(page, "page"), &page);
}

void TestInterfaceLoader::stopsAtAMissingOutlet()
{
    const ChildOutcome child = runInChild(ChildUser::Same, [] {
        QWidget page;
        page.setObjectName(QStringLiteral("page"));
        outlet<QLabel>(page, "title");
        return 0;
    });
    QCOMPARE(child.signal, SIGABRT);
    QVERIFY2(child.errorText.contains("the interface page has no title"), child.errorText);
}

void TestInterfaceLoader::stopsAtAnOutletOfAnotherType()
{
    const ChildOutcome child = runInChild(ChildUser::Same, [] {
        QWidget page;
        page.setObjectName(QStringLiteral("page"));
        auto *const title = new QLabel(&page);
        title->setObjectName(QStringLiteral("title"));
        outlet<QPushButton>(page, "title");
        return 0;
    });
    QCOMPARE(child.signal, SIGABRT);
    QVERIFY2(child.errorText.contains("title of the interface page is a QLabel, not a QPushButton"),
             child.errorText);
}

VANTOR_GUI_TEST_MAIN(TestInterfaceLoader)
#include "tst_InterfaceLoader.moc"
