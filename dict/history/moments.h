// Moments: as the journal keeps them (UTC, 2026-11-01T09:30:00.000Z), and as people type and read
// them, who mean the clock on their wall.
#ifndef DICT_HISTORY_MOMENTS_H
#define DICT_HISTORY_MOMENTS_H

#include <string>

#include "dm/problem.h"

namespace dict {

// The local time with its distance from UTC; a text that is no time as it is.
std::string local_time(const std::string& utc);

// Reads "today" or "yesterday" (where the day begins), "2026-11-01" (the same), or a day and a time
// such as "2026-11-01T10:00" or "2026-11-01 10:00:30". Local time, unless "Z" or a distance from
// UTC such as "+01:00" follows. A "@" may stand before it. False with the reason.
bool read_moment(const std::string& text, std::string& utc, dm::problem& why);

}  // namespace dict

#endif
