#include "largefiles/preview/PreviewPanel.h"

#include "largefiles/preview/PreviewCard.h"

#include <QKeyEvent>
#include <QPainter>

namespace {

/// The space left free above the panel, for the shade under the edge that the sheet comes out of.
constexpr int kTopMargin = 8;

bool isPlayKey(const QKeyEvent &event)
{
    return event.key() == Qt::Key_P || event.key() == Qt::Key_MediaPlay ||
           event.key() == Qt::Key_MediaTogglePlayPause;
}

} // namespace

PreviewPanel::PreviewPanel(FileReading reading, QWidget *parent)
    : QWidget(parent), m_reading(std::move(reading)), m_card(new PreviewCard(this))
{
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("Preview"));
    connect(m_card, &PreviewCard::closePressed, this, &PreviewPanel::orderOut);
    parent->installEventFilter(this);
    hide();
}

void PreviewPanel::makeKeyAndOrderFront()
{
    if (isHidden())
        m_formerFocus = window()->focusWidget();
    setGeometry(parentWidget()->rect().adjusted(0, kTopMargin, 0, 0));
    show();
    raise();
    setFocus(Qt::OtherFocusReason);
}

void PreviewPanel::orderOut()
{
    m_job.stop();
    m_isReading = false;
    m_content.reset();
    const bool hadFocus = hasFocus() || isAncestorOf(window()->focusWidget());
    if (hadFocus && m_formerFocus)
        m_formerFocus->setFocus(Qt::OtherFocusReason);
    hide();
    Q_EMIT orderedOut();
}

void PreviewPanel::reloadData()
{
    PreviewPanelDataSource *const source = m_dataSource.get();
    m_count = source ? source->numberOfPreviewItemsInPreviewPanel(*this) : 0;
    showItem(m_count > 0 ? 0 : -1);
}

void PreviewPanel::showItem(int index)
{
    m_index = index;
    m_kind.reset();
    readPage(0);
}

void PreviewPanel::readPage(int page)
{
    m_job.stop();
    m_content.reset();
    m_page = page;
    std::optional<File> file;
    if (m_index >= 0)
        file = m_dataSource.get()->previewItemAtIndex(*this, m_index);
    m_isReading = file.has_value();
    setAccessibleDescription(file ? file->name() : QString());
    if (!file)
        return m_card->showNothing();
    m_card->showTitle(*file, m_index, m_count);
    const PreviewRequest request{
        file->previewItemURL(), {m_card->contentSize(), devicePixelRatioF()}, page};
    m_job.run([reading = m_reading, request, file = *file, this](const std::stop_token &stop) {
        return [this, file, content = readPreview(reading, request, stop)] { take(file, content); };
    });
}

void PreviewPanel::take(const File &file, const PreviewContent &content)
{
    m_isReading = false;
    m_content = content;
    m_kind = Kind{content.kind == PreviewContent::Kind::Text, content.pageCount};
    m_card->showContent(file, content, m_page);
    Q_EMIT contentShown();
}

/// Whether the key was for what is shown.
bool PreviewPanel::turnTo(int key)
{
    const int items = key == Qt::Key_Right ? 1 : key == Qt::Key_Left ? -1 : 0;
    if (items != 0 && m_count > 1) {
        showItem(qBound(0, m_index + items, m_count - 1));
        return true;
    }
    const int pages = key == Qt::Key_PageDown ? 1 : key == Qt::Key_PageUp ? -1 : 0;
    return pages != 0 && turnPages(pages);
}

/// A page that is still being read may already be turned. As long as nothing of the item has been
/// read, it is unknown whether the key is the panel's or the delegate's, so neither acts on it.
bool PreviewPanel::turnPages(int pages)
{
    if (!m_kind)
        return m_isReading;
    if (m_kind->isText)
        return m_card->scrollText(pages);
    if (m_kind->pageCount < 2)
        return false;
    const int page = qBound(0, m_page + pages, m_kind->pageCount - 1);
    if (page != m_page)
        readPage(page);
    return true;
}

void PreviewPanel::keyPressEvent(QKeyEvent *event)
{
    event->accept(); // no key reaches the widgets behind
    if (event->key() == Qt::Key_Escape)
        return orderOut();
    if (isPlayKey(*event) && (event->isAutoRepeat() || m_card->togglePlaying()))
        return;
    if (turnTo(event->key()))
        return;
    if (PreviewPanelDelegate *const delegate = m_delegate.get())
        delegate->handleEvent(*this, *event);
}

bool PreviewPanel::event(QEvent *event)
{
    // Mouse events stop here, too.
    if (event->type() == QEvent::Wheel || event->type() == QEvent::ContextMenu) {
        event->accept();
        return true;
    }
    return QWidget::event(event);
}

bool PreviewPanel::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == parentWidget() && event->type() == QEvent::Resize)
        setGeometry(parentWidget()->rect().adjusted(0, kTopMargin, 0, 0));
    if (watched == m_card->textView() && event->type() == QEvent::KeyPress) {
        auto *const pressed = static_cast<QKeyEvent *>(event);
        if (pressed->key() == Qt::Key_Space) { // closes the preview; in the text it would scroll
            keyPressEvent(pressed);
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

/// The focus goes to the text, where there is one, and back: everything else is covered.
bool PreviewPanel::focusNextPrevChild(bool)
{
    QWidget *const text = m_card->textView();
    if (text && !text->hasFocus()) {
        text->installEventFilter(this);
        text->setFocus(Qt::TabFocusReason);
    } else {
        setFocus(Qt::TabFocusReason);
    }
    return true;
}

void PreviewPanel::mousePressEvent(QMouseEvent *event)
{
    event->accept(); // must not reach what is covered
}

void PreviewPanel::paintEvent(QPaintEvent *)
{
    QPainter(this).fillRect(rect(), palette().window());
}

void PreviewPanel::resizeEvent(QResizeEvent *)
{
    m_card->setGeometry(rect());
}
