#include "prefs/tutorial/TextTutorialView.h"

#include "platform/look/Fonts.h"
#include "platform/look/Images.h"
#include "widgets/ThinScrollBar.h"

#include <QFile>
#include <QFileInfo>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace {

constexpr int kTextSize = 14;
constexpr double kPageMargin = 24;

/// Loads its pictures as drawings: as pixels they would be blurred on a fine screen. Uses only the
/// page's own styles: the style sheet beside the page is for the web view.
class Browser final : public QTextBrowser
{
public:
    using QTextBrowser::QTextBrowser;

protected:
    QVariant loadResource(int type, const QUrl &name) override
    {
        const QString drawing = QFileInfo(name.path()).completeBaseName();
        if (type == QTextDocument::ImageResource && hasImageNamed(drawing))
            return imageNamed(drawing, devicePixelRatioF());
        if (type == QTextDocument::StyleSheetResource)
            return {};
        return QTextBrowser::loadResource(type, name);
    }
};

} // namespace

TextTutorialView::TextTutorialView(QWidget *parent)
    : TutorialView(parent), m_browser(new Browser(this))
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(m_browser);
    setFocusProxy(m_browser);
    m_browser->setFrameShape(QFrame::NoFrame);
    m_browser->setVerticalScrollBar(new ThinScrollBar(Qt::Vertical, m_browser));
    m_browser->setHorizontalScrollBar(new ThinScrollBar(Qt::Horizontal, m_browser));
    m_browser->setOpenLinks(false);
    m_browser->setAccessibleName(tr("Tutorial"));
    m_browser->document()->setDefaultFont(interfaceFont(Typeface::Light, kTextSize));
    m_browser->document()->setDocumentMargin(kPageMargin);
}

void TextTutorialView::load(const QUrl &page)
{
    if (QFile::exists(QLatin1Char(':') + page.path()))
        m_browser->setSource(page);
    else
        m_browser->clear();
}

QString TextTutorialView::plainText() const
{
    return m_browser->toPlainText();
}

TutorialView *makeTutorialView(QWidget *parent)
{
    return new TextTutorialView(parent);
}
