#include "platform/openpanel/OpenPanelView.h"

#include "platform/look/Fonts.h"
#include "platform/look/PanelButton.h"
#include "platform/look/WrappedLabel.h"
#include "platform/sheet/Sheet.h"

#include <QApplication>
#include <QBoxLayout>
#include <QLabel>
#include <QSettings>
#include <QTimer>

namespace {

constexpr QSize kSize(740, 480);
constexpr int kMargin = 24;
constexpr int kLowerMargin = 8; // the sheet's rounded edge adds to it
constexpr int kGap = 14;
constexpr int kButtonGap = 6;
constexpr int kPromptSize = 15;
constexpr int kMessageSize = 13;
/// When the disk answers sooner than this, no text is shown.
constexpr std::chrono::milliseconds kPauseBeforeWaitingText{500};

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

OpenPanelView::OpenPanelView(OpenPanel panel, const ChooserQuestions &questions,
                             const DialogPartNames &partNames)
    : m_panel(std::move(panel)),
      m_partNames(partNames),
      m_chooserPlace(new QWidget(this)),
      m_icons(std::make_shared<FileIcons>())
{
    setAccessibleName(m_panel.prompt.isEmpty() ? m_panel.title : m_panel.prompt);
    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin - PanelButton::kRing, kLowerMargin);
    column->setSpacing(kGap);
    addPrompt(*column);
    column->addWidget(m_chooserPlace, 1);
    addWaitingText();
    addButtons(*column);
    askForStart(questions);
    askForPlaces(questions);
}

OpenPanelView::~OpenPanelView()
{
    if (m_chooser)
        letChooserGo();
}

/// A folder that is being read may lie on a disk that does not answer.
void OpenPanelView::letChooserGo()
{
    const auto end = [chooser = m_chooser, icons = m_icons] {
        const SharedSettingsAside aside;
        delete chooser;
    };
    if (!m_chooser->isReading())
        return end();
    m_chooser->disconnect(this);
    m_chooser->retire();
    connect(m_chooser, &FileChooser::hasRead, qApp, end,
            static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection));
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

/// The text stands where the list will be, and takes the focus until then. Otherwise the key that
/// opened the panel would cancel it when the user presses the key once more.
void OpenPanelView::addWaitingText()
{
    const QString text = QStringLiteral("Looking…");
    m_waitingText = new QLabel(m_chooserPlace);
    m_waitingText->setFont(interfaceFont(Typeface::Regular, kMessageSize));
    m_waitingText->setAccessibleName(text);
    m_waitingText->setAlignment(Qt::AlignCenter);
    m_waitingText->setForegroundRole(QPalette::PlaceholderText);
    m_waitingText->setFocusPolicy(Qt::StrongFocus);
    auto *const layout = new QVBoxLayout(m_chooserPlace);
    layout->setContentsMargins({});
    layout->addWidget(m_waitingText);
    QTimer::singleShot(kPauseBeforeWaitingText, m_waitingText,
                       [label = m_waitingText, text] { label->setText(text); });
}

void OpenPanelView::askForStart(const ChooserQuestions &questions)
{
    m_questions.run(
        [this, find = questions.start, wanted = m_panel.startFolder](const std::stop_token &) {
            return [this, start = find(wanted)] { addChooser(start); };
        });
}

void OpenPanelView::askForPlaces(const ChooserQuestions &questions)
{
    m_questions.run([this, questions](const std::stop_token &) {
        return
            [this, questions, places = questions.places()] { askWhichAreThere(places, questions); };
    });
}

void OpenPanelView::askWhichAreThere(const QList<QUrl> &places, const ChooserQuestions &questions)
{
    m_places = places;
    for (const QUrl &place : places) {
        m_questions.run(
            [this, place, isThere = questions.isThere](const std::stop_token &) -> BackgroundReply {
                if (!isThere(place))
                    return {};
                return [this, place] {
                    m_placesThere.append(place);
                    offerPlaces();
                };
            });
    }
}

void OpenPanelView::offerPlaces()
{
    if (!m_chooser)
        return;
    QList<QUrl> offered = m_places;
    offered.removeIf([this](const QUrl &place) { return !m_placesThere.contains(place); });
    m_chooser->offerPlaces(offered);
}

void OpenPanelView::addChooser(const QString &start)
{
    const SharedSettingsAside aside;
    m_chooser = new FileChooser(m_panel, start, *m_icons, m_partNames, m_chooserPlace);
    if (QLayout *const layout = m_chooser->layout())
        layout->setContentsMargins(0, 0, PanelButton::kRing, 0);
    m_chooserPlace->layout()->addWidget(m_chooser);
    connect(m_chooser, &FileChooser::chosen, this, &OpenPanelView::choose);
    connect(m_chooser, &FileChooser::cancelled, this, &OpenPanelView::cancel);
    connect(m_chooser, &FileChooser::chosenPathChanged, this, &OpenPanelView::updateOpenButton);
    updateOpenButton();
    offerPlaces();
    m_chooser->show(); // which gives the focus to the name
    m_chooser->focusList();
    delete std::exchange(m_waitingText, nullptr);
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
