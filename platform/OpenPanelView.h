#pragma once

#include "platform/ChooserPlaces.h"
#include "platform/FileChooser.h"
#include "platform/FileIcons.h"

#include <QFutureWatcher>
#include <QWidget>
#include <functional>

class PanelButton;
class QBoxLayout;
class QLabel;

/// The panel that lets the user choose a file or folder; ends the sheet that shows it. The list
/// comes when the disk has said where to start, because the toolkit asks that folder's status, and
/// that of those above it, on the main thread; until then there is nothing to choose. Main thread
/// only.
class OpenPanelView final : public QWidget
{
    Q_OBJECT

public:
    /// Called on a thread of its own, for which nobody waits.
    using PlacesFinder = std::function<ChooserPlaces(const QByteArray &wanted)>;

    explicit OpenPanelView(OpenPanel panel, PlacesFinder find = findChooserPlaces);
    ~OpenPanelView() override;

    QSize sizeHint() const override;

    /// What was chosen; empty until then.
    QByteArray path() const { return m_path; }

private:
    void addPrompt(QBoxLayout &column);
    void addButtons(QBoxLayout &column);
    void findPlaces(PlacesFinder find);
    void addChooser();
    void cancel();
    void choose();
    void updateOpenButton();
    QString objection(const QFileInfo &item) const;

    OpenPanel m_panel;
    QByteArray m_path;
    FileIcons m_icons;
    QFutureWatcher<ChooserPlaces> m_places;
    QWidget *m_chooserPlace = nullptr;
    FileChooser *m_chooser = nullptr; ///< once the places are known
    QLabel *m_message = nullptr;
    PanelButton *m_openButton = nullptr;
};
