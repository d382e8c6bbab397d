#include "largefiles/sheet/InterfaceClasses.h"

#include "largefiles/sheet/QuickLookTableView.h"
#include "largefiles/sheet/TextButton.h"
#include "platform/desktop/InterfaceLoader.h"
#include "widgets/RoundedFrame.h"

void registerLargeFilesClasses(InterfaceLoader &loader)
{
    loader.registerClass<QuickLookTableView>();
    loader.registerClass<RoundedFrame>();
    loader.registerClass<TextButton>();
}
