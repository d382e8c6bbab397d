#include "app/InterfaceClasses.h"
#include "platform/desktop/InterfaceLoader.h"
#include "tests/support/run/GuiTestMain.h"

#include <QAccessible>
#include <QDir>
#include <QLabel>

/// Every interface description loads, holds what its class looks for, and cuts no text off.
class TestInterfaceDescriptions final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { registerInterfaceClasses(m_loader); }

    void load_data();
    void load();
    void holdTheirOutlets_data();
    void holdTheirOutlets();
    void showTheirTextsWhole_data() { load_data(); }
    void showTheirTextsWhole();
    void showThePieToAssistiveTechnology();

private:
    InterfaceLoader m_loader;
};

void TestInterfaceDescriptions::load_data()
{
    QTest::addColumn<QString>("name");
    for (const QString &file : QDir(QStringLiteral(":/interface")).entryList())
        QTest::addRow("%s", qPrintable(file)) << file.section(u'.', 0, 0);
}

void TestInterfaceDescriptions::load()
{
    QFETCH(QString, name);
    const LoadedInterface loaded = m_loader.load(name);
    QVERIFY2(loaded, loaded ? "" : qPrintable(loaded.error().text));
    QCOMPARE((*loaded)->objectName(), name);
}

void TestInterfaceDescriptions::holdTheirOutlets_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("outlet");
    QTest::addColumn<QByteArray>("className");
    const struct
    {
        const char *name;
        QList<std::pair<const char *, const char *>> outlets;
    } rows[] = {
        {"MainMenu",
         {{"openPreferencesAction", "QAction"},
          {"goBackAction", "QAction"},
          {"resetHomeFolderAction", "QAction"},
          {"quitAction", "QAction"}}},
        {"FolderSelectViewController", {{"homeButton", "ImageButton"}, {"homeCheck", "ImageView"}}},
        {"DiskInfoViewController",
         {{"pieChart", "PieChart"},
          {"startButton", "StartButton"},
          {"freeLabel", "TextField"},
          {"usedLabel", "TextField"},
          {"totalLabel", "TextField"},
          {"freeSwatch", "ColorView"},
          {"usedSwatch", "ColorView"}}},
        {"FreeSpaceViewController",
         {{"pieChart", "PieChart"},
          {"startButton", "StartButton"},
          {"legendImageView", "LegendView"},
          {"freeLabel", "TextField"},
          {"usedLabel", "TextField"},
          {"totalLabel", "TextField"}}},
        {"FinalViewController",
         {{"pieChart", "PieChart"},
          {"scanAgainButton", "StartButton"},
          {"sizeLabel", "TextField"},
          {"freeLabel", "TextField"},
          {"usedLabel", "TextField"},
          {"totalLabel", "TextField"}}},
    };
    for (const auto &row : rows) {
        for (const auto &[outlet, className] : row.outlets)
            QTest::addRow("%s %s", row.name, outlet)
                << QString::fromLatin1(row.name) << QByteArray(outlet) << QByteArray(className);
    }
}

void TestInterfaceDescriptions::holdTheirOutlets()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, outlet);
    QFETCH(QByteArray, className);
    const LoadedInterface loaded = m_loader.load(name);
    QVERIFY(loaded);
    const QObject *object = (*loaded)->findChild<QObject *>(QString::fromLatin1(outlet));
    QVERIFY(object);
    QCOMPARE(QByteArray(object->metaObject()->className()), className);
}

void TestInterfaceDescriptions::showTheirTextsWhole()
{
    QFETCH(QString, name);
    const LoadedInterface loaded = m_loader.load(name);
    QVERIFY(loaded);
    (*loaded)->ensurePolished();
    for (const QLabel *label : (*loaded)->findChildren<QLabel *>()) {
        if (label->wordWrap() || label->text().isEmpty() || label->parentWidget()->layout())
            continue;
        QVERIFY2(label->width() >= label->sizeHint().width(), qPrintable(label->objectName()));
        QVERIFY2(label->height() >= label->sizeHint().height(), qPrintable(label->objectName()));
    }
}

void TestInterfaceDescriptions::showThePieToAssistiveTechnology()
{
    const LoadedInterface page = m_loader.load(QStringLiteral("FreeSpaceViewController"));
    QVERIFY(page);
    auto *pie = (*page)->findChild<QWidget *>(QStringLiteral("pieChart"));
    QVERIFY(pie);
    QCOMPARE(QAccessible::queryAccessibleInterface(pie)->role(), QAccessible::List);
}

VANTOR_GUI_TEST_MAIN(TestInterfaceDescriptions)
#include "tst_InterfaceDescriptions.moc"
