#pragma once

#include <algorithm>
#include <cerrno>
#include <concepts>
#include <initializer_list>

/// How often a call is tried that fails for a moment only. Each attempt takes some microseconds; a
/// call that still fails then is reported, for it may fail for ever.
inline constexpr int kMostAttempts = 1000;

/// Makes a call, and makes it again while it fails with one of these errors, but not for ever.
/// Returns the last answer, a SystemResult.
template <std::invocable Call>
auto attempted(Call call, std::initializer_list<int> passingErrors = {EINTR})
{
    auto answer = call();
    for (int attempt = 1; attempt < kMostAttempts && !answer &&
                          std::ranges::find(passingErrors, answer.error()) != passingErrors.end();
         ++attempt)
        answer = call();
    return answer;
}
