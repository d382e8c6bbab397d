#include "largefiles/preview/PlayerReport.h"
#include "tests/soak/fuzz/Edits.h"
#include "tests/soak/fuzz/FuzzTargets.h"

#include <QBuffer>

namespace {

constexpr int kModes = 2;

enum class Mode { Bytes, Damaged };

QByteArray written(const PlayerReport &report)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    writeReport(buffer, report);
    return buffer.data();
}

/// What a player says about a film: that it plays, two frames, the end.
const QByteArray &goodReports()
{
    static const QByteArray good = [] {
        QImage frame(6, 4, QImage::Format_RGB32);
        frame.fill(Qt::darkCyan);
        QByteArray reports;
        for (const PlayerReport &report : {PlayerReport{PlayerReport::Kind::Playing, 0, 9000, {}},
                                           PlayerReport{PlayerReport::Kind::Frame, 40, 9000, frame},
                                           PlayerReport{PlayerReport::Kind::Frame, 80, 9000, frame},
                                           PlayerReport{PlayerReport::Kind::Ended, 9000, 9000, {}}})
            reports += written(report);
        return reports;
    }();
    return good;
}

QByteArray findingIn(const PlayerReport &report)
{
    const bool isFrame = report.kind == PlayerReport::Kind::Frame;
    if (report.kind > PlayerReport::Kind::Failed || report.position < 0 || report.duration < 0)
        return "a report that makes no sense";
    if (isFrame == report.frame.isNull())
        return "a frame without a picture, or a picture without a frame";
    if (report.frame.width() > kLargestFrameSide || report.frame.height() > kLargestFrameSide)
        return "a frame that is too large";
    return {};
}

} // namespace

/// The player may have been taken over: its reports make sense, they are read one after the other,
/// and each takes bytes away, so that reading comes to an end.
QByteArray findingInPlayerReport(const QByteArray &input)
{
    const ModedInput moded(input, kModes);
    QByteArray bytes =
        Mode(moded.mode) == Mode::Bytes ? moded.rest : edited(goodReports(), moded.rest);
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    for (;;) {
        const qint64 before = buffer.pos();
        const ReadReport read = readReport(buffer);
        if (read.state == ReadReport::State::Incomplete && buffer.pos() != before)
            return "a part of a report is lost";
        if (read.state != ReadReport::State::Whole)
            break;
        if (buffer.pos() <= before)
            return "a report of no bytes";
        if (const QByteArray finding = findingIn(read.report); !finding.isEmpty())
            return finding;
    }
    const bool isGood = bytes == goodReports();
    return isGood && !buffer.atEnd() ? "a good report is not read" : "";
}
