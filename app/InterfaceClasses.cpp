#include "app/InterfaceClasses.h"

#include "chart/PieChart.h"
#include "chart/PieChartAccessible.h"
#include "largefiles/sheet/InterfaceClasses.h"
#include "platform/desktop/InterfaceLoader.h"
#include "prefs/exclusions/InterfaceClasses.h"
#include "widgets/InterfaceClasses.h"

void registerInterfaceClasses(InterfaceLoader &loader)
{
    registerWidgetClasses(loader);
    registerLargeFilesClasses(loader);
    registerPrefsClasses(loader);
    loader.registerClass<PieChart>();
    installPieChartAccessibility();
}
