#pragma once

#include "platform/FileChooser.h"
#include "platform/FileIcons.h"

#include <QWidget>

class PanelButton;
class QBoxLayout;
class QLabel;

/// The panel that lets the user choose a file or folder; ends the sheet that shows it. Main thread
/// only.
class OpenPanelView final : public QWidget
{
    Q_OBJECT

public:
    explicit OpenPanelView(OpenPanel panel);
    ~OpenPanelView() override;

    QSize sizeHint() const override;

    /// What was chosen; empty until then.
    QByteArray path() const { return m_path; }

private:
    void addPrompt(QBoxLayout &column);
    void addChooser(QBoxLayout &column);
    void addButtons(QBoxLayout &column);
    void cancel();
    void choose();
    void updateOpenButton();
    QString objection(const QString &path) const;

    OpenPanel m_panel;
    QByteArray m_path;
    FileIcons m_icons;
    FileChooser *m_chooser = nullptr;
    QLabel *m_message = nullptr;
    PanelButton *m_openButton = nullptr;
};
