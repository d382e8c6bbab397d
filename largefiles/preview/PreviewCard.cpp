#include "largefiles/preview/PreviewCard.h"

#include "largefiles/preview/MediaView.h"
#include "platform/base/ByteCount.h"
#include "platform/look/Fonts.h"
#include "widgets/ImageButton.h"
#include "widgets/StyledLabel.h"
#include "widgets/ThinScrollBar.h"

#include <QFontDatabase>
#include <QLocale>
#include <QPainter>
#include <QPlainTextEdit>

namespace {

constexpr int kMargin = 20;
constexpr int kHeaderHeight = 48;
constexpr int kFooterHeight = 40;
constexpr int kCloseSize = 14;
constexpr int kTitleSize = 15;
constexpr int kTextSize = 9;
constexpr QColor kLineColour(236, 239, 242);
const QString kSeparator = QStringLiteral("  ·  ");

QString factsOf(const File &file, const PreviewContent &content, int page)
{
    QStringList facts;
    if (!content.typeName.isEmpty())
        facts << content.typeName;
    if (content.kind == PreviewContent::Kind::Missing) {
        facts << file.sizeString().value_or(QString())
              << PreviewCard::tr("This file cannot be read");
    } else {
        facts << stringFromByteCount(content.size)
              << QLocale().toString(content.modified.date(), QLocale::LongFormat);
    }
    if (content.pageCount > 1)
        facts << PreviewCard::tr("Page %1 of %2").arg(page + 1).arg(content.pageCount);
    if (content.isCut)
        facts << PreviewCard::tr("Beginning of the text");
    facts.removeAll(QString());
    return facts.join(kSeparator);
}

} // namespace

PreviewCard::PreviewCard(QWidget *parent)
    : QWidget(parent),
      m_title(new StyledLabel(this)),
      m_facts(new StyledLabel(this)),
      m_text(new QPlainTextEdit(this)),
      m_closeButton(new ImageButton(this)),
      m_media(new MediaView(this))
{
    m_title->setFont(interfaceFont(Typeface::Regular, kTitleSize));
    m_title->setTextFormat(Qt::PlainText);
    m_title->setAlignment(Qt::AlignCenter);
    static_cast<StyledLabel *>(m_facts)->setRole(StyledLabel::Quiet);
    m_facts->setTextFormat(Qt::PlainText);
    m_facts->setAlignment(Qt::AlignCenter);
    m_closeButton->setImageName(QStringLiteral("windowClose"));
    m_closeButton->setAlternateImageName(QStringLiteral("windowClosePressed"));
    m_closeButton->setAccessibleName(tr("Close preview"));
    m_closeButton->setFocusPolicy(Qt::NoFocus);
    connect(m_closeButton, &QAbstractButton::clicked, this, &PreviewCard::closePressed);
    setUpText();
    showNothing();
}

void PreviewCard::setUpText()
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPointSize(kTextSize);
    m_text->setFont(font);
    m_text->setReadOnly(true);
    m_text->setUndoRedoEnabled(false);
    m_text->setFocusPolicy(Qt::TabFocus);
    m_text->setTextInteractionFlags(Qt::TextSelectableByKeyboard | Qt::TextSelectableByMouse);
    m_text->setFrameShape(QFrame::NoFrame);
    m_text->setContextMenuPolicy(Qt::NoContextMenu);
    m_text->setVerticalScrollBar(new ThinScrollBar(Qt::Vertical, m_text));
    m_text->setHorizontalScrollBar(new ThinScrollBar(Qt::Horizontal, m_text));
    m_text->setAccessibleName(tr("Beginning of the file"));
}

void PreviewCard::showNothing()
{
    m_title->setText(tr("Nothing is selected"));
    m_facts->clear();
    m_media->clear();
    m_text->hide();
    m_image = {};
    update();
}

void PreviewCard::showTitle(const File &file, int index, int count)
{
    QString title = m_title->fontMetrics().elidedText(file.name(), Qt::ElideMiddle,
                                                      qMax(0, m_title->width() - kMargin * 4));
    if (count > 1)
        title += QStringLiteral("   ") + tr("%1 of %2").arg(index + 1).arg(count);
    m_title->setText(title);
    m_facts->clear();
    m_media->clear();
    m_text->hide();
    m_image = {};
    update();
}

void PreviewCard::showContent(const File &file, const PreviewContent &content, int page)
{
    m_facts->setText(factsOf(file, content, page));
    m_image = content.image;
    m_text->setPlainText(content.text);
    m_text->setVisible(content.kind == PreviewContent::Kind::Text);
    if (content.kind == PreviewContent::Kind::Picture ||
        content.kind == PreviewContent::Kind::Facts)
        m_media->setFile(file.fileURL());
    else
        m_media->clear();
    update();
}

bool PreviewCard::togglePlaying()
{
    return m_media->togglePlaying();
}

bool PreviewCard::scrollText(int pages)
{
    QScrollBar &bar = *m_text->verticalScrollBar();
    bar.setValue(bar.value() + pages * bar.pageStep());
    return true;
}

QWidget *PreviewCard::textView() const
{
    return m_text->isVisibleTo(this) ? m_text : nullptr;
}

QString PreviewCard::title() const
{
    return m_title->text();
}

QString PreviewCard::facts() const
{
    return m_facts->text();
}

QString PreviewCard::shownText() const
{
    return m_text->isVisibleTo(this) ? m_text->toPlainText() : QString();
}

QRect PreviewCard::contentRect() const
{
    return rect().adjusted(kMargin, kHeaderHeight + kMargin / 2, -kMargin,
                           -kFooterHeight - kMargin / 2);
}

void PreviewCard::resizeEvent(QResizeEvent *)
{
    m_closeButton->setGeometry(kMargin, (kHeaderHeight - kCloseSize) / 2, kCloseSize, kCloseSize);
    m_title->setGeometry(2 * kMargin + kCloseSize, 0, width() - 4 * kMargin - 2 * kCloseSize,
                         kHeaderHeight);
    m_facts->setGeometry(kMargin, height() - kFooterHeight, width() - 2 * kMargin, kFooterHeight);
    m_text->setGeometry(contentRect());
    m_media->setGeometry(contentRect());
}

void PreviewCard::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.fillRect(0, kHeaderHeight, width(), 1, kLineColour);
    painter.fillRect(0, height() - kFooterHeight - 1, width(), 1, kLineColour);
    if (m_image.isNull())
        return;
    const QRect room = contentRect();
    QSizeF size = m_image.deviceIndependentSize();
    if (size.width() > room.width() || size.height() > room.height())
        size.scale(room.size(), Qt::KeepAspectRatio);
    const QPointF middle(size.width() / 2, size.height() / 2);
    const QPoint origin = (QRectF(room).center() - middle).toPoint();
    painter.drawImage(QRectF(origin, size), m_image);
}
