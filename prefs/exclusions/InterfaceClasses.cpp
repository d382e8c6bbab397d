#include "prefs/exclusions/InterfaceClasses.h"

#include "platform/desktop/InterfaceLoader.h"
#include "platform/look/PanelButton.h"
#include "prefs/exclusions/ExcludedFilesView.h"
#include "prefs/tutorial/TutorialView.h"
#include "prefs/window/ColorWindow.h"

void registerPrefsClasses(InterfaceLoader &loader)
{
    loader.registerClass<ColorWindow>();
    loader.registerClass<ExcludedFilesView>();
    loader.registerClass(QStringLiteral("PanelButton"), [](QWidget *parent) -> QWidget * {
        return new PanelButton({}, PanelButtonLook::Plain, parent);
    });
    loader.registerClass(QStringLiteral("TutorialView"),
                         [](QWidget *parent) -> QWidget * { return makeTutorialView(parent); });
}
