#include "widgets/InterfaceClasses.h"

#include "platform/desktop/InterfaceLoader.h"
#include "widgets/ColorView.h"
#include "widgets/ImageButton.h"
#include "widgets/ImageView.h"
#include "widgets/LegendView.h"
#include "widgets/RoundedFrame.h"
#include "widgets/StartButton.h"
#include "widgets/StyledLabel.h"
#include "widgets/TextField.h"

void registerWidgetClasses(InterfaceLoader &loader)
{
    loader.registerClass<ColorView>();
    loader.registerClass<ImageButton>();
    loader.registerClass<ImageView>();
    loader.registerClass<LegendView>();
    loader.registerClass<RoundedFrame>();
    loader.registerClass<StartButton>();
    loader.registerClass<StyledLabel>();
    loader.registerClass<TextField>();
}
