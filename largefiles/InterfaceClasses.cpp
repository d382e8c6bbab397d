#include "largefiles/InterfaceClasses.h"

#include "largefiles/QuickLookTableView.h"
#include "largefiles/TextButton.h"
#include "platform/InterfaceLoader.h"
#include "prefs/RoundedFrame.h"
#include "widgets/StyledLabel.h"

void registerLargeFilesClasses(InterfaceLoader &loader)
{
    loader.registerClass<QuickLookTableView>();
    loader.registerClass<RoundedFrame>();
    loader.registerClass<StyledLabel>();
    loader.registerClass<TextButton>();
}
