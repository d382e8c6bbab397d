#include "platform/SystemHomes.h"

bool homesHaveALibrary()
{
    return false;
}
