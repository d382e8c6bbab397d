#pragma once

#include "app/navigation/WindowController.h"

class QCheckBox;
class TutorialView;
class UserDefaults;

/// The tutorial: a panel that the slices page shows as a sheet until the user declines it. The page
/// makes one on first use, keeps it, and decides when to show its window(). Main thread.
class DemoWindowController final : public WindowController
{
    Q_OBJECT

public:
    /// Both must outlive the controller.
    DemoWindowController(const InterfaceLoader &loader, UserDefaults &defaults,
                         QObject *parent = nullptr);

    TutorialView *webview() const { return m_webview; }
    QCheckBox *checkbox() const { return m_checkbox; }

public Q_SLOTS:
    /// The check box: whether the tutorial is not shown again. Counts at the next decision; the
    /// sheet stays.
    void dontShowAgainPressed();

    /// Ends the sheet.
    void okPressed();

protected:
    void windowDidLoad() override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void readSetting();

    UserDefaults &m_defaults;
    TutorialView *m_webview = nullptr;
    QCheckBox *m_checkbox = nullptr;
};
