#include "prefs/InterfaceClasses.h"

#include "platform/InterfaceLoader.h"
#include "platform/PanelButton.h"
#include "prefs/ColorWindow.h"
#include "prefs/ExcludedFilesView.h"
#include "prefs/RoundedFrame.h"
#include "prefs/TutorialView.h"
#include "widgets/ColorView.h"
#include "widgets/StyledLabel.h"

void registerPrefsClasses(InterfaceLoader &loader)
{
    loader.registerClass<ColorView>();
    loader.registerClass<ColorWindow>();
    loader.registerClass<ExcludedFilesView>();
    loader.registerClass<RoundedFrame>();
    loader.registerClass<StyledLabel>();
    loader.registerClass(QStringLiteral("PanelButton"), [](QWidget *parent) -> QWidget * {
        return new PanelButton({}, PanelButtonLook::Plain, parent);
    });
    loader.registerClass(QStringLiteral("TutorialView"),
                         [](QWidget *parent) -> QWidget * { return makeTutorialView(parent); });
}
