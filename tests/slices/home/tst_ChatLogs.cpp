#include "slices/home/ChatLogs.h"

#include "tests/slices/kit/HomeKit.h"
#include "tests/support/run/TestMain.h"

/// Which programs' "logs" are conversations between people.
class TestChatLogs final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void knowsProgramsByTheirNames_data();
    void knowsProgramsByTheirNames();
    void takesNoConversationForALog();
};

void TestChatLogs::knowsProgramsByTheirNames_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<bool>("isKept");
    const auto row = [](const QByteArray &path, bool isKept) {
        QTest::newRow(path) << path << isKept;
    };
    for (const char *name : {"hexchat",       "weechat",   "konversation", "pidgin",
                             ".purple",       "gajim",     "dino",         "psi",
                             "psi+",          "kvirc",     "quassel",      "quassel-irc.org",
                             "quasselclient", "irssi",     "polari",       "xchat",
                             "xchat2",        "telepathy", "Element",      "Element-Nightly"})
        row(QByteArray(".config/") + name + "/logs", true);
    row(".local/share/weechat/logs", true);
    row(".local/share/TpLogger/logs", true);
    row(".local/share/nicotine/logs", true);
    row(".var/app/io.github.Hexchat/config/hexchat/logs", true);
    row(".var/app/io.github.Hexchat/config/other/logs", true);
    row(".config/editor/logs", false);
    row(".config/Code/logs", false);
    row(".config/epsilon/logs", false); // "psi" in the midst of a word
    row(".local/state/player/logs", false);
}

void TestChatLogs::knowsProgramsByTheirNames()
{
    QFETCH(const QByteArray, path);
    QFETCH(const bool, isKept);
    QCOMPARE(isChatLogFolder(path), isKept);
}

void TestChatLogs::takesNoConversationForALog()
{
    const MadeHome home({".config/hexchat/logs/net/anna.log", ".local/share/weechat/logs/a.log",
                         ".local/state/irssi/logs/a.log", ".config/editor/logs/a.log",
                         ".var/app/io.github.Hexchat/config/hexchat/logs/net/anna.log",
                         ".var/app/org.a.Editor/config/editor/logs/a.log"});
    QCOMPARE(home.relative(*home.survey().locations(SliceKind::AppLogs)),
             QByteArrayList({".config/editor/logs/", ".var/app/org.a.Editor/config/editor/logs/"}));
}

VANTOR_TEST_MAIN(TestChatLogs)
#include "tst_ChatLogs.moc"
