#include "platform/look/Pace.h"

namespace {

int pace = 1;

} // namespace

void setPace(int factor)
{
    pace = factor;
}

std::chrono::milliseconds paced(std::chrono::milliseconds duration)
{
    return duration * pace;
}
