#include "slices/home/HomeEnvironment.h"

#include <QtGlobal>

HomeEnvironment HomeEnvironment::ofThisProcess()
{
    return {qgetenv("XDG_DATA_HOME"), qgetenv("XDG_CACHE_HOME"), qgetenv("HOME")};
}
