#include "platform/look/Pace.h"

namespace {

int &pace()
{
    static int factor = 1;
    return factor;
}

} // namespace

void setPace(int factor)
{
    pace() = factor;
}

std::chrono::milliseconds paced(std::chrono::milliseconds duration)
{
    return duration * pace();
}
