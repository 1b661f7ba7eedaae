// Runs a stand-in compiler once.
#pragma once

#include "profile.h"

#include <string>
#include <vector>

namespace standin {

// Returns the exit code: 0 for success (warnings or not), 1 for errors in the source or with files, 2 for a command
// line that is not understood. `args` are UTF-8, without the program's name. Messages are appended to `messages`.
int RunCompiler(const Profile& profile, const std::vector<std::string>& args, std::string& messages);

}  // namespace standin
