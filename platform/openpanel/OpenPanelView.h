#pragma once

#include "platform/look/FileIcons.h"
#include "platform/openpanel/ChooserPlaces.h"
#include "platform/openpanel/FileChooser.h"
#include "platform/threads/BackgroundQueue.h"

#include <QWidget>
#include <functional>
#include <memory>

class PanelButton;
class QBoxLayout;
class QLabel;

/// The panel that lets the user choose a file or folder; ends the sheet that shows it. The list
/// appears when the disk has told in which folder to start, because the toolkit asks for the status
/// of that folder and of those above it on the main thread. Until then there is nothing to choose.
/// For the same reason each folder beside the list appears when its own disk has answered; nothing
/// waits for it. Main thread only.
class OpenPanelView final : public QWidget
{
    Q_OBJECT

public:
    explicit OpenPanelView(OpenPanel panel, const ChooserQuestions &questions = {},
                           const DialogPartNames &partNames = {});
    ~OpenPanelView() override;

    QSize sizeHint() const override;

    /// What was chosen; empty until then.
    QByteArray path() const { return m_path; }

private:
    void addPrompt(QBoxLayout &column);
    void addButtons(QBoxLayout &column);
    void addWaitingText();
    void askForStart(const ChooserQuestions &questions);
    void askForPlaces(const ChooserQuestions &questions);
    void askWhichAreThere(const QList<QUrl> &places, const ChooserQuestions &questions);
    void addChooser(const QString &start);
    void letChooserGo();
    void offerPlaces();
    void cancel();
    void choose();
    void updateOpenButton();
    QString objection(const QFileInfo &item) const;

    OpenPanel m_panel;
    DialogPartNames m_partNames;
    QByteArray m_path;
    QList<QUrl> m_places;      ///< in order
    QList<QUrl> m_placesThere; ///< in the order of their answers
    QWidget *m_chooserPlace = nullptr;
    QLabel *m_waitingText = nullptr; ///< shown until there is a chooser
    std::shared_ptr<FileIcons> m_icons;
    FileChooser *m_chooser = nullptr; ///< null until it is known where to start
    QLabel *m_message = nullptr;
    PanelButton *m_openButton = nullptr;
    /// A disk that does not answer must hold up neither the panel, nor its end, nor another disk.
    BackgroundQueue<OwnersEnd::Abandon, Queueing::All> m_questions{kThreadForEachTask};
};
