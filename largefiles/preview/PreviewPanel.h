#pragma once

#include "largefiles/preview/PreviewContent.h"
#include "largefiles/preview/PreviewPanelProtocols.h"
#include "platform/base/WeakReference.h"
#include "platform/threads/BackgroundQueue.h"

#include <QPointer>
#include <QWidget>

class PreviewCard;

/// Shows what is in the files of its data source, one at a time, over the whole of its parent:
/// pictures, pages of documents, how texts begin, and an icon with the facts of everything else.
/// Left and Right page through several items, Page Up and Page Down through the pages of a document
/// or a text; P plays a film or a sound; Escape and the close button close it; it hands all other
/// keys to the delegate. It has the focus while it is shown, and gives it back. Files are read on a
/// thread of its own. Main thread only.
class PreviewPanel final : public QWidget
{
    Q_OBJECT

public:
    PreviewPanel(FileReading reading, QWidget *parent);

    void setDataSource(WeakReference<PreviewPanelDataSource> source)
    {
        m_dataSource = std::move(source);
    }
    void setDelegate(WeakReference<PreviewPanelDelegate> delegate)
    {
        m_delegate = std::move(delegate);
    }

    /// Shows the panel and gives it the focus. Its content comes with reloadData().
    void makeKeyAndOrderFront();
    void orderOut();
    /// Asks the data source again and shows the first item.
    void reloadData();

    /// The item that is shown, from 0; -1 while there are none.
    int currentPreviewItemIndex() const { return m_index; }
    /// What was read of that item; nothing while it is being read, or when there is no item.
    const std::optional<PreviewContent> &content() const { return m_content; }

Q_SIGNALS:
    /// The present item has been read.
    void contentShown();
    /// It is closed.
    void orderedOut();

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    /// What was read of the present item before, which holds for all its pages.
    struct Kind
    {
        bool isText = false;
        int pageCount = 0;
    };

    bool turnTo(int key);
    bool turnPages(int pages);
    void showItem(int index);
    void readPage(int page);
    void take(const File &file, const PreviewContent &content);

    FileReading m_reading;
    WeakReference<PreviewPanelDataSource> m_dataSource;
    WeakReference<PreviewPanelDelegate> m_delegate;
    PreviewCard *m_card;
    QPointer<QWidget> m_formerFocus;
    int m_count = 0;
    int m_index = -1;
    int m_page = 0;
    std::optional<PreviewContent> m_content;
    std::optional<Kind> m_kind;
    bool m_isReading = false;
    BackgroundQueue<OwnersEnd::Abandon, Queueing::LatestOnly> m_job;
};
