#pragma once

#include <array>
#include <optional>

/// The way from the press of the start button to the result, as a table: which event leads from
/// where to where. Values only; any thread. See CleaningFlow for what is done in each state.

enum class CleaningState {
    Idle,
    CheckingGrant, ///< whether the granted folder is still there; before and after the question
    LookingForPrograms, ///< what is in use stays, and the question says so
    Measuring,          ///< the sizes that the question names
    Identifying,        ///< what stands at the locations, so that nothing else there goes
    Asking,             ///< the user has the question
    Cleaning,
};

enum class CleaningEvent {
    Pressed,       ///< the start button, and something may be cleaned
    GrantUsable,   ///< and what is to be cleaned has to be asked (again)
    GrantUnusable, ///< the user knows why
    ConsentStands, ///< the grant is usable, and exactly what was confirmed would be cleaned
    ProgramsFound,
    Measured,    ///< what had no size has one; its locations may have changed meanwhile
    AllMeasured, ///< nothing is left without a size
    Identified,
    ChoiceChanged, ///< since the last look
    Confirmed,     ///< by the user, and there is still something to clean
    Declined,      ///< by the user
    NotReady,      ///< nothing may be cleaned any more
    PageLeft,
    Cleaned, ///< as far as it could be
};

struct CleaningTransition
{
    CleaningState state;
    CleaningEvent event;
    CleaningState next;
};

/// An event that is not in the table leads nowhere: a second press, or an answer that comes too
/// late. In particular only the end of the cleaning leads out of it, and only a consent that stands
/// leads into it.
inline constexpr auto kCleaningTransitions = [] {
    using enum CleaningState;
    using enum CleaningEvent;
    return std::to_array<CleaningTransition>({
        {Idle, Pressed, CheckingGrant},
        // The page was left and came back under its question. Its records are new ones since then,
        // so the user is asked again.
        {Idle, Confirmed, CheckingGrant},

        {CheckingGrant, GrantUsable, LookingForPrograms},
        {CheckingGrant, ConsentStands, Cleaning},
        {CheckingGrant, GrantUnusable, Idle},
        {CheckingGrant, NotReady, Idle},
        {CheckingGrant, PageLeft, Idle},

        {LookingForPrograms, ProgramsFound, Measuring},
        {LookingForPrograms, PageLeft, Idle},

        {Measuring, Measured, Measuring},
        {Measuring, AllMeasured, Identifying},
        {Measuring, NotReady, Idle},
        {Measuring, PageLeft, Idle},

        {Identifying, Identified, Asking},
        {Identifying, ChoiceChanged, Measuring},
        {Identifying, NotReady, Idle},
        {Identifying, PageLeft, Idle},

        {Asking, Confirmed, CheckingGrant},
        {Asking, Declined, Idle},
        {Asking, NotReady, Idle},
        {Asking, PageLeft, Idle},

        {Cleaning, Cleaned, Idle},
    });
}();

/// Where the event leads from this state; nothing where it leads nowhere.
constexpr std::optional<CleaningState> nextState(CleaningState state, CleaningEvent event)
{
    for (const CleaningTransition &transition : kCleaningTransitions) {
        if (transition.state == state && transition.event == event)
            return transition.next;
    }
    return std::nullopt;
}
