#include "largefiles/preview/PlayerReport.h"
#include "tests/support/run/GuiTestMain.h"

#include <QBuffer>
#include <cstring>

namespace {

using Kind = PlayerReport::Kind;
using State = ReadReport::State;

/// Where the numbers of a report stand in its bytes.
constexpr int kPosition = 0;
constexpr int kDuration = 8;
constexpr int kWidth = 16;
constexpr int kHeight = 20;
constexpr int kKind = 24;

QByteArray written(const PlayerReport &report)
{
    QBuffer buffer;
    if (!buffer.open(QIODevice::WriteOnly) || !writeReport(buffer, report))
        qFatal("cannot write");
    return buffer.data();
}

ReadReport readFrom(QByteArray bytes)
{
    QBuffer buffer(&bytes);
    if (!buffer.open(QIODevice::ReadOnly))
        qFatal("cannot read");
    return readReport(buffer);
}

PlayerReport frameOf(QSize size)
{
    QImage frame(size, QImage::Format_RGB32);
    frame.fill(Qt::darkMagenta);
    return {Kind::Frame, 40, 1000, frame};
}

} // namespace

/// What is believed of a player's output when the file that it plays may control the player.
class PlayerReportTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void comesBackAsItWasWritten()
    {
        const ReadReport frame = readFrom(written(frameOf({16, 9})));
        QCOMPARE(frame.state, State::Whole);
        QCOMPARE(frame.report.kind, Kind::Frame);
        QCOMPARE(frame.report.position, 40);
        QCOMPARE(frame.report.duration, 1000);
        QCOMPARE(frame.report.frame, frameOf({16, 9}).frame);
        const ReadReport failure = readFrom(written({}));
        QCOMPARE(failure.state, State::Whole);
        QCOMPARE(failure.report.kind, Kind::Failed);
        QVERIFY(failure.report.frame.isNull());
    }

    void waitsForTheRest()
    {
        const QByteArray bytes = written(frameOf({4, 3}));
        for (qsizetype length = 0; length < bytes.size(); ++length) {
            QByteArray part = bytes.first(length);
            QBuffer buffer(&part);
            QVERIFY(buffer.open(QIODevice::ReadOnly));
            QCOMPARE(readReport(buffer).state, State::Incomplete);
            QCOMPARE(buffer.bytesAvailable(), length); // nothing was taken
        }
    }

    void isBrokenWhereItSaysNothingSensible_data()
    {
        QTest::addColumn<bool>("hasFrame");
        QTest::addColumn<int>("place");
        QTest::addColumn<qint32>("number");
        QTest::newRow("no kind") << false << kKind << qint32(-1);
        QTest::newRow("a kind too many") << false << kKind << qint32(Kind::Failed) + 1;
        QTest::newRow("a frame without a frame") << false << kKind << qint32(Kind::Frame);
        QTest::newRow("a width without a frame") << false << kWidth << qint32(1);
        QTest::newRow("a height without a frame") << false << kHeight << qint32(1);
        QTest::newRow("before the beginning") << false << kPosition + 4 << qint32(-1);
        QTest::newRow("shorter than nothing") << false << kDuration + 4 << qint32(-1);
        QTest::newRow("no width") << true << kWidth << qint32(0);
        QTest::newRow("no height") << true << kHeight << qint32(0);
        QTest::newRow("too wide") << true << kWidth << qint32(kLargestFrameSide + 1);
        QTest::newRow("too high") << true << kHeight << qint32(kLargestFrameSide + 1);
        QTest::newRow("less than no width") << true << kWidth << qint32(-16);
    }
    void isBrokenWhereItSaysNothingSensible()
    {
        QFETCH(bool, hasFrame);
        QFETCH(int, place);
        QFETCH(qint32, number);
        QByteArray bytes = written(hasFrame ? frameOf({16, 9}) : PlayerReport{});
        std::memcpy(bytes.data() + place, &number, sizeof number);
        QCOMPARE(readFrom(bytes).state, State::Broken);
    }
};

VANTOR_GUI_TEST_MAIN(PlayerReportTest)
#include "tst_PlayerReport.moc"
