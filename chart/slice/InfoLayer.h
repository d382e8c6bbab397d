#pragma once

#include "platform/base/WeakReference.h"
#include "platform/look/Fonts.h"
#include "platform/threads/BackgroundQueue.h"

#include <QPixmap>
#include <QPoint>
#include <QRectF>
#include <QString>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class Info;
class QPainter;

/// A piece of a label's text in one weight.
struct WeightedRun
{
    QString text;
    Typeface face = Typeface::Regular;

    friend bool operator==(const WeightedRun &, const WeightedRun &) = default;
};
using WeightedText = std::vector<WeightedRun>;

/// Measures the sizes that the labels of one pie ask for. It measures at most as many at a time as
/// there are processors, because each walk uses several threads itself. A disk that does not answer
/// does not keep the program from ending; the owner of the records tells their measurements to
/// stop.
using SizeQueue = BackgroundQueue<OwnersEnd::Abandon, Queueing::All>;
std::shared_ptr<SizeQueue> makeSizeQueue();

/// The label that rides on a slice: icon, name and size, one below the other around a middle point.
/// The label asks for the size text in the background, because folders may have to be measured for
/// it; it shows the text when it arrives. Main thread only.
class InfoLayer final : public WeaklyReferable
{
public:
    /// `changed` is called on the main thread when the label changes its look by itself. The labels
    /// of one pie share their queue.
    explicit InfoLayer(std::function<void()> changed = {},
                       std::shared_ptr<SizeQueue> queue = makeSizeQueue());
    InfoLayer(const InfoLayer &) = delete;
    InfoLayer &operator=(const InfoLayer &) = delete;

    const std::shared_ptr<Info> &info() const { return m_info; }
    /// Shows this record, or nothing. The size of an earlier record disappears at once; an answer
    /// that still comes for that record is dropped.
    void setInfo(std::shared_ptr<Info> info);

    /// The middle point, in the ChartPlane.
    QPoint position() const { return m_position; }
    void setPosition(QPoint position) { m_position = position; }

    bool isHidden() const { return m_isHidden; }
    void setHidden(bool hidden) { m_isHidden = hidden; }

    const QString &imageName() const { return m_content.image; }
    const QString &nameString() const { return m_content.name; }
    const WeightedText &sizeText() const { return m_content.size; }
    /// The size text without its weights; empty while the size is not known.
    QString sizeString() const;

    /// Where the parts are, relative to the middle point, y growing upwards.
    QRectF imageFrame() const;
    QRectF nameFrame() const;
    QRectF sizeFrame() const;
    /// All that is painted, relative to the middle point, y growing upwards.
    const QRectF &bounds() const { return m_bounds; }

    /// Paints the label with its middle at a point of the painter's (y growing downwards).
    void paint(QPainter &painter, QPointF middle, double opacity);

    /// The size text with its weights: one for the number, one for the unit. Nothing for a text
    /// that is not a number with a two-letter unit; such a text is shown plain.
    static std::optional<WeightedText> attributedSizeString(const QString &text);

private:
    /// What the label shows.
    struct Content
    {
        QString image;
        QString name;
        WeightedText size;
        bool isIconAlone = false;

        friend bool operator==(const Content &, const Content &) = default;
    };

    void askForSize();
    void sizeArrived(const Info *info, const std::optional<QString> &text);
    void contentChanged();
    QRectF neededBounds() const;
    QPixmap drawn(double scale) const;

    std::function<void()> m_changed;
    std::shared_ptr<SizeQueue> m_queue;
    std::shared_ptr<Info> m_info;
    QPoint m_position;
    bool m_isHidden = false;
    Content m_content;

    /// The record whose size was asked for and has not arrived yet; used only to compare addresses.
    const Info *m_asked = nullptr;
    bool m_askAgain = false;

    QRectF m_bounds;
    QPixmap m_picture; ///< the whole label, drawn once for a scale
    double m_pictureScale = 0;
};
