#pragma once

#include "slices/plan/CleaningPlan.h"

/// Why a location was left alone, in words.
struct RefusalText
{
    const char *told;   ///< to the user, after the location; still to be translated
    const char *logged; ///< shorter, for readers who know the program
};

RefusalText refusalText(RefusalReason reason);
