// Opening a session with what the client library's interface does not let a caller choose.
#ifndef DM_DATA_MANAGER_H
#define DM_DATA_MANAGER_H

#include <vector>

#include "dd/vantor.h"

struct tav_dm_session;

namespace dm {

struct open_options;
struct problem;
struct settings;

// From now on each problem that the bound data manager reports is also appended to `problems`
// (borrowed); null ends that.
void note_problems(std::vector<problem>* problems);

// As connect of the bound data manager (vantor/binding.h), with these settings instead of those in
// tav.conf. Throws std::bad_alloc.
tav_dm_session* open_session(const settings& settings, const open_options& options, tav_ebuf* ebuf);

}  // namespace dm

#endif
