#include "app/InterfaceClasses.h"

#include "chart/PieChart.h"
#include "largefiles/sheet/InterfaceClasses.h"
#include "platform/desktop/InterfaceLoader.h"
#include "prefs/exclusions/InterfaceClasses.h"
#include "widgets/ColorView.h"
#include "widgets/ImageButton.h"
#include "widgets/ImageView.h"
#include "widgets/LegendView.h"
#include "widgets/StartButton.h"
#include "widgets/StyledLabel.h"
#include "widgets/TextField.h"

void registerInterfaceClasses(InterfaceLoader &loader)
{
    registerLargeFilesClasses(loader);
    registerPrefsClasses(loader);
    loader.registerClass<ColorView>();
    loader.registerClass<ImageButton>();
    loader.registerClass<ImageView>();
    loader.registerClass<LegendView>();
    loader.registerClass<PieChart>();
    loader.registerClass<StartButton>();
    loader.registerClass<StyledLabel>();
    loader.registerClass<TextField>();
}
