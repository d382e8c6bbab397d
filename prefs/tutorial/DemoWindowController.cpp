#include "prefs/tutorial/DemoWindowController.h"

#include "app/settings/SettingsKeys.h"
#include "app/settings/UserDefaults.h"
#include "platform/desktop/InterfaceLoader.h"
#include "platform/look/Fonts.h"
#include "platform/sheet/Sheet.h"
#include "prefs/tutorial/TutorialView.h"
#include "widgets/ColorView.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QEvent>

namespace {

constexpr int kTextSize = 13;

} // namespace

DemoWindowController::DemoWindowController(const InterfaceLoader &loader, UserDefaults &defaults,
                                           QObject *parent)
    : WindowController(loader, parent), m_defaults(defaults)
{
}

void DemoWindowController::windowDidLoad()
{
    QWidget &panel = *window();
    m_webview = outlet<TutorialView>(panel, "webview");
    m_checkbox = outlet<QCheckBox>(panel, "checkbox");
    auto *okButton = outlet<QAbstractButton>(panel, "okButton");
    connect(m_checkbox, &QAbstractButton::clicked, this,
            &DemoWindowController::dontShowAgainPressed);
    connect(okButton, &QAbstractButton::clicked, this, &DemoWindowController::okPressed);
    m_checkbox->setFont(interfaceFont(Typeface::Regular, kTextSize));
    m_webview->load(QUrl(QStringLiteral("qrc:/tutorialVantor.html")));
    m_webview->setFocus(); // the keys scroll it, as soon as the panel is shown
    outlet<ColorView>(panel, "contentView")->setColor(Qt::white);
    readSetting();
    panel.installEventFilter(this);
}

void DemoWindowController::readSetting()
{
    m_checkbox->setChecked(m_defaults.boolean(VNTHideDemoWindowString));
}

bool DemoWindowController::eventFilter(QObject *watched, QEvent *event)
{
    // The setting may have been changed elsewhere since the panel was last seen.
    if (event->type() == QEvent::Show)
        readSetting();
    return WindowController::eventFilter(watched, event);
}

void DemoWindowController::dontShowAgainPressed()
{
    m_defaults.setBoolean(VNTHideDemoWindowString, m_checkbox->isChecked());
}

void DemoWindowController::okPressed()
{
    endSheet(*window());
}
