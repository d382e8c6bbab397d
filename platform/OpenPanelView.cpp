#include "platform/OpenPanelView.h"

#include "platform/Fonts.h"
#include "platform/PanelButton.h"
#include "platform/Sheet.h"
#include "platform/WrappedLabel.h"

#include <QBoxLayout>
#include <QPromise>
#include <QSettings>
#include <thread>

namespace {

constexpr QSize kSize(740, 480);
constexpr int kMargin = 24;
constexpr int kLowerMargin = 8; // the sheet's rounded edge adds to it
constexpr int kGap = 14;
constexpr int kButtonGap = 6;
constexpr int kPromptSize = 15;
constexpr int kMessageSize = 13;

/// The toolkit's file dialog reads and writes settings that it shares with all programs, the
/// folders visited among them. While this lives it finds none, and leaves no trace.
class SharedSettingsAside final
{
public:
    SharedSettingsAside()
    {
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                           QStringLiteral("/dev/null/none"));
    }
    ~SharedSettingsAside()
    {
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_folder);
    }
    SharedSettingsAside(const SharedSettingsAside &) = delete;
    SharedSettingsAside &operator=(const SharedSettingsAside &) = delete;

private:
    QString m_folder =
        QFileInfo(QSettings(QSettings::UserScope, QStringLiteral("none")).fileName()).path();
};

} // namespace

OpenPanelView::OpenPanelView(OpenPanel panel, PlacesFinder find) : m_panel(std::move(panel))
{
    setAccessibleName(m_panel.prompt.isEmpty() ? m_panel.title : m_panel.prompt);
    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin - PanelButton::kRing, kLowerMargin);
    column->setSpacing(kGap);
    addPrompt(*column);
    m_chooserPlace = new QWidget(this);
    column->addWidget(m_chooserPlace, 1);
    addButtons(*column);
    findPlaces(std::move(find));
}

OpenPanelView::~OpenPanelView()
{
    const SharedSettingsAside aside;
    delete m_chooser;
}

QSize OpenPanelView::sizeHint() const
{
    return kSize;
}

void OpenPanelView::addPrompt(QBoxLayout &column)
{
    if (!m_panel.prompt.isEmpty())
        column.addWidget(
            new WrappedLabel(m_panel.prompt, interfaceFont(Typeface::Medium, kPromptSize), this));
}

/// A disk that does not answer must not hold up the panel, nor its end: the thread has nothing of
/// the panel's, and the watcher hears it only while the panel is there.
void OpenPanelView::findPlaces(PlacesFinder find)
{
    connect(&m_places, &QFutureWatcherBase::finished, this, &OpenPanelView::addChooser);
    QPromise<ChooserPlaces> promise;
    m_places.setFuture(promise.future());
    std::thread([promise = std::move(promise), find = std::move(find),
                 wanted = m_panel.startFolder]() mutable {
        promise.start();
        promise.addResult(find(wanted));
        promise.finish();
    }).detach();
}

void OpenPanelView::addChooser()
{
    const SharedSettingsAside aside;
    m_chooser = new FileChooser(m_panel, m_places.result(), m_icons, m_chooserPlace);
    m_chooser->layout()->setContentsMargins(0, 0, PanelButton::kRing, 0);
    auto *const layout = new QVBoxLayout(m_chooserPlace);
    layout->setContentsMargins({});
    layout->addWidget(m_chooser);
    connect(m_chooser, &FileChooser::chosen, this, &OpenPanelView::choose);
    connect(m_chooser, &FileChooser::cancelled, this, &OpenPanelView::cancel);
    connect(m_chooser, &FileChooser::chosenPathChanged, this, &OpenPanelView::updateOpenButton);
    updateOpenButton();
    m_chooser->show(); // which gives the focus to the name
    m_chooser->focusList();
}

void OpenPanelView::addButtons(QBoxLayout &column)
{
    auto *const row = new QHBoxLayout;
    row->setSpacing(kButtonGap);
    column.addLayout(row);
    m_message = new WrappedLabel({}, interfaceFont(Typeface::Regular, kMessageSize), this);
    row->addWidget(m_message, 1);
    auto *const cancelButton =
        new PanelButton(QStringLiteral("Cancel"), PanelButtonLook::Plain, this);
    connect(cancelButton, &QPushButton::clicked, this, &OpenPanelView::cancel);
    row->addWidget(cancelButton);
    m_openButton = new PanelButton(m_panel.title, PanelButtonLook::Plain, this);
    m_openButton->setDefault(true);
    m_openButton->setEnabled(false);
    connect(m_openButton, &QPushButton::clicked, this, &OpenPanelView::choose);
    row->addWidget(m_openButton);
}

void OpenPanelView::cancel()
{
    endSheet(*this, kSheetCancelled);
}

void OpenPanelView::choose()
{
    const QString path = m_chooser->chosenPath();
    const QFileInfo item(path); // asks the disk once
    if (m_panel.choice == OpenPanelChoice::Files && item.isDir()) {
        m_chooser->enter(path);
        return;
    }
    const QString refusal = objection(item);
    m_message->setText(refusal);
    if (!refusal.isEmpty())
        return;
    m_path = QFile::encodeName(path);
    endSheet(*this, kSheetAccepted);
}

void OpenPanelView::updateOpenButton()
{
    m_message->clear();
    const QByteArray path = QFile::encodeName(m_chooser->chosenPath());
    m_openButton->setEnabled(!m_panel.shouldEnable || m_panel.shouldEnable(path));
}

/// Why this item cannot be chosen; nothing when it can.
QString OpenPanelView::objection(const QFileInfo &item) const
{
    const QString path = item.filePath();
    const QString name = item.fileName().isEmpty() ? path : item.fileName();
    if (QFile::decodeName(QFile::encodeName(path)) != path || !item.exists())
        return QStringLiteral("There is no file or folder named “%1”.").arg(name);
    if (m_panel.choice == OpenPanelChoice::Folders && !item.isDir())
        return QStringLiteral("“%1” is not a folder.").arg(name);
    if (m_panel.shouldEnable && !m_panel.shouldEnable(QFile::encodeName(path)))
        return QStringLiteral("“%1” cannot be chosen here.").arg(name);
    return {};
}
