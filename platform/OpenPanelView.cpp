#include "platform/OpenPanelView.h"

#include "platform/Fonts.h"
#include "platform/PanelButton.h"
#include "platform/Sheet.h"
#include "platform/WrappedLabel.h"

#include <QBoxLayout>
#include <QSettings>

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

OpenPanelView::OpenPanelView(OpenPanel panel) : m_panel(std::move(panel))
{
    setAccessibleName(m_panel.prompt.isEmpty() ? m_panel.title : m_panel.prompt);
    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin - PanelButton::kRing, kLowerMargin);
    column->setSpacing(kGap);
    addPrompt(*column);
    addChooser(*column);
    addButtons(*column);
    connect(m_chooser, &FileChooser::chosen, this, &OpenPanelView::choose);
    connect(m_chooser, &FileChooser::cancelled, this, &OpenPanelView::cancel);
    connect(m_chooser, &FileChooser::chosenPathChanged, this, &OpenPanelView::updateOpenButton);
    updateOpenButton();
    m_chooser->focusList();
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

void OpenPanelView::addChooser(QBoxLayout &column)
{
    const SharedSettingsAside aside;
    m_chooser = new FileChooser(m_panel, m_icons, this);
    m_chooser->layout()->setContentsMargins(0, 0, PanelButton::kRing, 0);
    column.addWidget(m_chooser, 1);
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
    if (m_panel.choice == OpenPanelChoice::Files && QFileInfo(path).isDir()) {
        m_chooser->enter(path);
        return;
    }
    const QString refusal = objection(path);
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

/// Why this path cannot be chosen; nothing when it can.
QString OpenPanelView::objection(const QString &path) const
{
    const QFileInfo item(path);
    const QString name = item.fileName().isEmpty() ? path : item.fileName();
    if (QFile::decodeName(QFile::encodeName(path)) != path || !item.exists())
        return QStringLiteral("There is no file or folder named “%1”.").arg(name);
    if (m_panel.choice == OpenPanelChoice::Folders && !item.isDir())
        return QStringLiteral("“%1” is not a folder.").arg(name);
    if (m_panel.shouldEnable && !m_panel.shouldEnable(QFile::encodeName(path)))
        return QStringLiteral("“%1” cannot be chosen here.").arg(name);
    return {};
}
