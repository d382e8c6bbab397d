#include "platform/system/SystemHomes.h"

bool homesHaveALibrary()
{
    return false;
}
