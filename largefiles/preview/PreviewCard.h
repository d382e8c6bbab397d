#pragma once

#include "largefiles/preview/PreviewContent.h"
#include "largefiles/search/File.h"

#include <QWidget>

class ImageButton;
class MediaView;
class QLabel;
class QPlainTextEdit;

/// What a preview looks like: a card with the file's name above, what is in it in the middle, and
/// its facts below. Takes no focus except for a text, which can be read by keyboard. Main thread
/// only.
class PreviewCard final : public QWidget
{
    Q_OBJECT

public:
    explicit PreviewCard(QWidget *parent);

    void showNothing();
    /// Shows the name of the file that is being read, and its position among the files.
    void showTitle(const File &file, int index, int count);
    void showContent(const File &file, const PreviewContent &content, int page);
    /// Whether there was anything to play or to pause.
    bool togglePlaying();

    /// Room for a picture, in points.
    QSize contentSize() const { return contentRect().size(); }
    /// Scrolls down by pages, or up for a negative number. Always returns true.
    bool scrollText(int pages);

    /// The view of the text that is shown, for the focus; null while there is none.
    QWidget *textView() const;

    QString title() const;
    QString facts() const;
    QString shownText() const;

Q_SIGNALS:
    void closePressed();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void setUpText();
    QRect contentRect() const;

    QLabel *m_title;
    QLabel *m_facts;
    QPlainTextEdit *m_text;
    ImageButton *m_closeButton;
    MediaView *m_media;
    QImage m_image;
};
