#include "largefiles/sheet/InterfaceClasses.h"

#include "largefiles/sheet/QuickLookTableView.h"
#include "largefiles/sheet/TextButton.h"
#include "platform/desktop/InterfaceLoader.h"

void registerLargeFilesClasses(InterfaceLoader &loader)
{
    loader.registerClass<QuickLookTableView>();
    loader.registerClass<TextButton>();
}
