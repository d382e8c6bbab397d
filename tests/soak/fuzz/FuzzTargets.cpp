#include "tests/soak/fuzz/FuzzTargets.h"

#include <array>

std::span<const FuzzTarget> fuzzTargets()
{
    static constexpr std::array<FuzzTarget, 12> targets{{
        {"settings-text", "the text of the settings", 4000, findingInSettingsText},
        {"settings-file", "the settings' file", 4000, findingInSettingsFile},
        {"exclusions", "excluded paths", 4000, findingInExclusions},
        {"grant", "the stored grant", 4000, findingInGrant},
        {"user-dirs", "user-dirs.dirs", 4000, findingInUserDirs},
        {"profiles", "profiles.ini and Local State", 2000, findingInProfiles},
        {"survey", "a home that these three files describe", 400, findingInSurvey},
        {"thumbnailer-entry", "entries of thumbnail programs", 1000, findingInThumbnailerEntry},
        {"cached-thumbnail", "pictures in the thumbnail cache", 300, findingInCachedThumbnail},
        {"decoder-answer", "the answer of the decoder", 4000, findingInDecoderAnswer},
        {"player-report", "the reports of the player", 4000, findingInPlayerReport},
        {"instance-call", "the call of a second start", 4000, findingInInstanceCall},
    }};
    return targets;
}
