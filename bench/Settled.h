#pragma once

// When a screen settled, for the benchmarks that time the console from a key to what it shows.

#include <chrono>
#include <cstddef>
#include <optional>

#include "TermSession.h"

namespace KovoBench {

// The moment the console wrote its last byte before staying silent for `quiet` with `shown` on the
// screen, output before `since` not counted; nullopt when that did not come within the harness's
// deadline (or `deadline`). Each read is stamped as it arrives, so the quiet period itself is not part of the
// result.
inline std::optional<KovoTerm::TermSession::Clock::time_point> SettledAt(
    KovoTerm::TermSession& session, const KovoTerm::TermSession::ScreenPredicate& shown,
    KovoTerm::TermSession::Millis quiet, KovoTerm::TermSession::Clock::time_point since,
    KovoTerm::TermSession::Millis deadline = KovoTerm::TermSession::kDefaultDeadline) {
    using Clock = KovoTerm::TermSession::Clock;
    std::size_t seen = session.Output().size();
    Clock::time_point last = since;
    const bool settled = session.WaitUntil(
        [&] {
            const auto now = Clock::now();
            if (session.Output().size() != seen) {
                seen = session.Output().size();
                last = now;
            }
            return now - last >= quiet && shown(session.Screen());
        },
        deadline, std::chrono::milliseconds(5));
    if (!settled) return std::nullopt;
    return last;
}

}  // namespace KovoBench
