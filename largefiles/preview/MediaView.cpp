#include "largefiles/preview/MediaView.h"

#include "largefiles/preview/MediaControls.h"
#include "widgets/StyledLabel.h"

#include <QHideEvent>
#include <QMimeDatabase>
#include <QPainter>
#include <limits>

namespace {

constexpr int kControlsHeight = 30; ///< the line below the frames
constexpr int kSliderHeight = 16;
constexpr int kGap = 10;

bool isFilmOrSound(const FileUrl &file)
{
    const QString type = QMimeDatabase()
                             .mimeTypeForFile(QString::fromUtf8(file.lastPathComponent()),
                                              QMimeDatabase::MatchExtension)
                             .name();
    return type.startsWith(QLatin1String("video/")) || type.startsWith(QLatin1String("audio/"));
}

/// A time as clocks show it: "1:05", "2:00:00".
QString clockTime(qint64 milliseconds)
{
    constexpr qint64 kSixty = 60;
    const qint64 seconds = milliseconds / 1000;
    const QString tail = QStringLiteral(":%1").arg(seconds % kSixty, 2, 10, QLatin1Char('0'));
    const qint64 minutes = seconds / kSixty;
    if (minutes < kSixty)
        return QString::number(minutes) + tail;
    return QStringLiteral("%1:%2")
               .arg(minutes / kSixty)
               .arg(minutes % kSixty, 2, 10, QLatin1Char('0')) +
           tail;
}

} // namespace

MediaView::MediaView(QWidget *parent, Player player)
    : QWidget(parent),
      m_player(std::move(player)),
      m_button(new PlayButton(this)),
      m_slider(new PositionSlider(this)),
      m_time(new StyledLabel(this)),
      m_message(new StyledLabel(this))
{
    setAttribute(Qt::WA_Hover);
    setUpControls();
    clear();
}

MediaView::~MediaView() = default;

void MediaView::setUpControls()
{
    for (QLabel *const label : {m_time, m_message}) {
        static_cast<StyledLabel *>(label)->setRole(StyledLabel::Quiet);
        label->setTextFormat(Qt::PlainText);
    }
    m_time->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_message->setAlignment(Qt::AlignCenter);
    m_message->setAutoFillBackground(true);
    connect(m_button, &QAbstractButton::clicked, this, &MediaView::togglePlaying);
    connect(m_slider, &QSlider::sliderMoved, this, [this](int position) {
        if (m_process)
            m_process->seek(position);
    });
}

void MediaView::setFile(const FileUrl &file)
{
    clear();
    if (!isFilmOrSound(file) || !m_player.isInstalled())
        return;
    m_file = file;
    show();
}

void MediaView::clear()
{
    stop();
    m_message->clear();
    refresh();
    hide();
}

bool MediaView::togglePlaying()
{
    if (isHidden())
        return false;
    if (!m_process)
        open();
    else if (m_isOpening)
        stop();
    else
        m_isPlaying ? m_process->pause() : m_process->play();
    return true;
}

void MediaView::open()
{
    m_message->clear();
    m_isOpening = true;
    const QSize pixels = (QSizeF(frameRoom().size()) * devicePixelRatioF()).toSize();
    m_process = std::make_unique<PlayerProcess>(
        m_player, m_file,
        pixels.expandedTo({1, 1}).boundedTo({kLargestFrameSide, kLargestFrameSide}), nullptr);
    connect(m_process.get(), &PlayerProcess::reported, this, &MediaView::take);
    refresh();
}

void MediaView::stop()
{
    m_process.reset();
    m_isPlaying = false;
    m_isOpening = false;
    m_frame = {};
    showPosition(0, 0);
    refresh();
}

void MediaView::take(const PlayerReport &report)
{
    switch (report.kind) {
    case PlayerReport::Kind::Silent:
        return fail(tr("There is nothing to hear this with"));
    case PlayerReport::Kind::Failed:
        return fail(tr("This file cannot be played"));
    case PlayerReport::Kind::Playing:
        m_isPlaying = true;
        m_isOpening = false;
        break;
    case PlayerReport::Kind::Paused:
    case PlayerReport::Kind::Ended:
        m_isPlaying = false;
        break;
    case PlayerReport::Kind::Frame:
        m_frame = report.frame;
        break;
    case PlayerReport::Kind::Position:
        break;
    }
    showPosition(report.position, report.duration);
    refresh();
    Q_EMIT changed();
}

void MediaView::fail(const QString &message)
{
    m_process->disconnect(this);
    m_process.release()->deleteLater(); // it is the sender of the signal
    stop();
    m_message->setText(message);
    refresh();
    Q_EMIT changed();
}

void MediaView::showPosition(qint64 position, qint64 duration)
{
    constexpr qint64 kMost = std::numeric_limits<int>::max();
    m_slider->setMaximum(int(qMin(kMost, duration)));
    if (!m_slider->isSliderDown())
        m_slider->setValue(int(qMin(kMost, position)));
    m_time->setText(duration > 0 ? clockTime(position) + QStringLiteral(" / ") + clockTime(duration)
                                 : QString());
}

/// Shows the controls for the present state.
void MediaView::refresh()
{
    m_slider->setVisible(!m_time->text().isEmpty());
    m_time->setVisible(!m_time->text().isEmpty());
    m_message->setVisible(!m_message->text().isEmpty());
    m_button->setIsPlaying(m_isPlaying || m_isOpening);
    m_button->setIsFaded(m_isPlaying && !m_frame.isNull() && !underMouse());
    placeControls();
    update();
}

QString MediaView::message() const
{
    return m_message->text();
}

QString MediaView::time() const
{
    return m_time->text();
}

QRect MediaView::frameRoom() const
{
    return rect().adjusted(0, 0, 0, -kControlsHeight);
}

bool MediaView::event(QEvent *event)
{
    if (event->type() == QEvent::HoverEnter || event->type() == QEvent::HoverLeave)
        refresh();
    return QWidget::event(event);
}

void MediaView::hideEvent(QHideEvent *event)
{
    if (!event->spontaneous())
        stop();
}

void MediaView::resizeEvent(QResizeEvent *)
{
    placeControls();
}

/// The slider gets the length that the longest time leaves free.
void MediaView::placeControls()
{
    const QSize button = m_button->sizeHint();
    const QPoint middle = (m_frame.isNull() ? rect() : frameRoom()).center();
    m_button->setGeometry(QRect(middle - QPoint(button.width() / 2, button.height() / 2), button));
    const QString length = clockTime(m_slider->maximum());
    const int timeWidth =
        m_time->fontMetrics().horizontalAdvance(length + QStringLiteral(" / ") + length) + kGap;
    const int top = height() - kControlsHeight;
    m_slider->setGeometry(0, top + (kControlsHeight - kSliderHeight) / 2,
                          width() - timeWidth - kGap, kSliderHeight);
    m_time->setGeometry(width() - timeWidth, top, timeWidth, kControlsHeight);
    m_message->setGeometry(0, top, width(), kControlsHeight);
}

/// Frames, and the line below them, hide what they lie on.
void MediaView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    if (!m_time->text().isEmpty())
        painter.fillRect(rect().adjusted(0, frameRoom().height(), 0, 0), palette().window());
    if (m_frame.isNull())
        return;
    painter.fillRect(rect(), palette().window());
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QRect room = frameRoom();
    QSizeF size = QSizeF(m_frame.size()) / devicePixelRatioF();
    if (size.width() > room.width() || size.height() > room.height())
        size.scale(room.size(), Qt::KeepAspectRatio);
    const QPointF middle(room.width() / 2.0, room.height() / 2.0);
    painter.drawImage(QRectF(middle - QPointF(size.width() / 2, size.height() / 2), size), m_frame);
}
