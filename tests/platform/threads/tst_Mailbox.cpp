#include "platform/threads/Mailbox.h"

#include "tests/support/run/TestMain.h"

#include <QTest>
#include <memory>
#include <thread>

class MailboxTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void deliversOnItsOwnThreadInOrder()
    {
        Mailbox box;
        QList<int> delivered;
        std::thread::id here;
        std::thread([address = box.address(), &delivered, &here] {
            for (int i = 1; i <= 3; ++i)
                address.post([&delivered, i] { delivered.append(i); });
            address.post([&here] { here = std::this_thread::get_id(); });
        }).join();
        QVERIFY(delivered.isEmpty());
        QTRY_COMPARE(here, std::this_thread::get_id());
        QCOMPARE(delivered, QList<int>({1, 2, 3}));
    }

    void dropsWhatComesWhenItIsGone()
    {
        auto box = std::make_unique<Mailbox>();
        const Mailbox::Address address = box->address();
        bool isDelivered = false;
        address.post([&isDelivered] { isDelivered = true; });
        box.reset();
        std::thread([&] { address.post([&isDelivered] { isDelivered = true; }); }).join();
        QCoreApplication::processEvents();
        QVERIFY(!isDelivered);
    }

    void mayGoByAMessage()
    {
        auto box = std::make_unique<Mailbox>();
        bool isDelivered = false;
        box->address().post([&box] { box.reset(); });
        box->address().post([&isDelivered] { isDelivered = true; });
        QTRY_VERIFY(!box);
        QCoreApplication::processEvents();
        QVERIFY(!isDelivered);
    }

    void mayGoWhileItIsWrittenTo()
    {
        for (int round = 0; round < 100; ++round) {
            auto box = std::make_unique<Mailbox>();
            std::jthread writer([address = box->address()](const std::stop_token &stop) {
                while (!stop.stop_requested())
                    address.post([] {});
            });
            box.reset();
        }
    }
};

VANTOR_TEST_MAIN(MailboxTest)
#include "tst_Mailbox.moc"
