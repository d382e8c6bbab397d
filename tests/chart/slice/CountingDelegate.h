#pragma once

#include "chart/slice/ArcAnimation.h"

/// Counts what an animation tells.
class CountingDelegate final : public ArcAnimationDelegate
{
public:
    int started = 0;
    int finished = 0;
    int interrupted = 0;

    void animationDidStart(const ArcAnimation &) override { ++started; }
    void animationDidStop(const ArcAnimation &, Completion completion) override
    {
        ++(completion == Completion::Finished ? finished : interrupted);
    }
};
