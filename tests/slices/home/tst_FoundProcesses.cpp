#include "slices/home/FoundPrograms.h"

#include "tests/slices/kit/UsedHomeKit.h"
#include "tests/support/run/TestMain.h"

/// Every program that is recognised by its processes, with the names that its makers give them.
class TestFoundProcesses final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void knowsEveryProcess_data();
    void knowsEveryProcess();
    void takesNoOtherProcessForOne_data();
    void takesNoOtherProcessForOne();
};

/// By the names that the process list shows, and by whole names of which it shows a part.
void TestFoundProcesses::knowsEveryProcess_data()
{
    QTest::addColumn<QByteArrayList>("caches");
    const auto rows = [](const QByteArrayList &names, const QByteArrayList &caches) {
        for (const QByteArray &name : names)
            QTest::newRow(name) << caches;
    };
    const QByteArrayList sandboxes{
        ".var/app/io.github.ungoogled_software.ungoogled_chromium/cache/",
        ".var/app/org.chromium.Chromium/cache/", "snap/chromium/common/.cache/"};
    const QByteArrayList chrome{
        ".cache/google-chrome/", ".cache/google-chrome-beta/", ".cache/google-chrome-unstable/",
        ".var/app/com.google.Chrome/cache/", ".var/app/com.google.ChromeDev/cache/"};
    rows({"firefox", "firefox-bin", "firefox-esr"},
         {".cache/mozilla/", ".var/app/org.mozilla.firefox/cache/", "snap/firefox/common/.cache/"});
    rows({"librewolf", "librewolf-bin"},
         {".cache/librewolf/", ".var/app/io.gitlab.librewolf-community/cache/"});
    rows({"chrome"}, sorted(chrome + sandboxes)); // sandboxed builds of Chromium have that name
    rows({"chromium", "chromium-browse", "chromium-browser"},
         sorted(sandboxes + QByteArrayList{".cache/chromium/"}));
    rows({"brave"}, {".cache/BraveSoftware/", ".var/app/com.brave.Browser/cache/",
                     "snap/brave/common/.cache/"});
    rows({"msedge"},
         {".cache/microsoft-edge/", ".cache/microsoft-edge-beta/", ".cache/microsoft-edge-dev/",
          ".var/app/com.microsoft.Edge/cache/", ".var/app/com.microsoft.EdgeDev/cache/"});
    rows({"vivaldi-bin"}, {".cache/vivaldi-snapshot/", ".cache/vivaldi/",
                           ".var/app/com.vivaldi.Vivaldi/cache/", "snap/vivaldi/common/.cache/"});
    rows({"opera"},
         {".cache/opera/", ".var/app/com.opera.Opera/cache/", "snap/opera/common/.cache/"});
    rows({"epiphany", "epiphany-browse", "epiphany-browser"},
         {".cache/epiphany/", ".var/app/org.gnome.Epiphany/cache/"});
    rows({"falkon"}, {".cache/falkon/", ".var/app/org.kde.falkon/cache/"});
    rows({"konqueror"}, {".cache/konqueror/"});
    rows({"qutebrowser"}, {".cache/qutebrowser/", ".var/app/org.qutebrowser.qutebrowser/cache/"});
    rows({"thunderbird", "thunderbird-bin", "thunderbird-esr"},
         {".cache/thunderbird/", ".var/app/org.mozilla.Thunderbird/cache/",
          ".var/app/org.mozilla.thunderbird/cache/", "snap/thunderbird/common/.cache/"});
    rows({"evolution", "evolution-sourc", "evolution-calen", "evolution-addre",
          "evolution-source-registry", "evolution-calendar-factory",
          "evolution-addressbook-factory"},
         {".cache/evolution/", ".var/app/org.gnome.Evolution/cache/"});
    rows({"geary"}, {".cache/geary/", ".var/app/org.gnome.Geary/cache/"});
    rows({"kmail", "kontact"}, {".cache/kmail2/", ".var/app/org.kde.kontact/cache/"});
}

void TestFoundProcesses::knowsEveryProcess()
{
    QFETCH(const QByteArrayList, caches);
    const MadeHome home;
    makeCaches(home);
    MadeMachine machine;
    machine.programs = QByteArrayList{"bash", QTest::currentDataTag()};
    QCOMPARE(inUse(home, machine), sorted(caches));
}

void TestFoundProcesses::takesNoOtherProcessForOne_data()
{
    QTest::addColumn<QByteArray>("program");
    for (const char *name : {"", "bash", "fire", "firefoxes", "chrom", "chromium-brows", "Chrome",
                             "chrome_crashpad", "vivaldi", "evolution-x"})
        QTest::newRow(name) << QByteArray(name);
}

void TestFoundProcesses::takesNoOtherProcessForOne()
{
    QFETCH(const QByteArray, program);
    const MadeHome home;
    makeCaches(home);
    MadeMachine machine;
    machine.programs = QByteArrayList{program};
    QCOMPARE(inUse(home, machine), QByteArrayList());
}

VANTOR_TEST_MAIN(TestFoundProcesses)
#include "tst_FoundProcesses.moc"
