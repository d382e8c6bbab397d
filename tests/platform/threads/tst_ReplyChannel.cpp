#include "platform/threads/ReplyChannel.h"

#include "tests/support/run/TestMain.h"

#include <QTest>
#include <memory>
#include <thread>

class ReplyChannelTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void deliversOnItsOwnThreadInOrder()
    {
        ReplyChannel channel;
        QList<int> delivered;
        std::thread::id here;
        std::thread([sender = channel.sender(), &delivered, &here] {
            for (int i = 1; i <= 3; ++i)
                sender.post([&delivered, i] { delivered.append(i); });
            sender.post([&here] { here = std::this_thread::get_id(); });
        }).join();
        QVERIFY(delivered.isEmpty());
        QTRY_COMPARE(here, std::this_thread::get_id());
        QCOMPARE(delivered, QList<int>({1, 2, 3}));
    }

    void dropsWhatComesWhenItIsGone()
    {
        auto channel = std::make_unique<ReplyChannel>();
        const ReplyChannel::Sender sender = channel->sender();
        bool isDelivered = false;
        sender.post([&isDelivered] { isDelivered = true; });
        channel.reset();
        std::thread([&] { sender.post([&isDelivered] { isDelivered = true; }); }).join();
        QCoreApplication::processEvents();
        QVERIFY(!isDelivered);
    }

    void mayGoByAMessage()
    {
        auto channel = std::make_unique<ReplyChannel>();
        bool isDelivered = false;
        channel->sender().post([&channel] { channel.reset(); });
        channel->sender().post([&isDelivered] { isDelivered = true; });
        QTRY_VERIFY(!channel);
        QCoreApplication::processEvents();
        QVERIFY(!isDelivered);
    }

    void mayGoWhileItIsWrittenTo()
    {
        for (int round = 0; round < 100; ++round) {
            auto channel = std::make_unique<ReplyChannel>();
            std::jthread writer([sender = channel->sender()](const std::stop_token &stop) {
                while (!stop.stop_requested())
                    sender.post([] {});
            });
            channel.reset();
        }
    }
};

VANTOR_TEST_MAIN(ReplyChannelTest)
#include "tst_ReplyChannel.moc"
