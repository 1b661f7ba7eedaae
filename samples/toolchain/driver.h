// One run of a stand-in: command line in, files and messages out.
#pragma once

#include "profile.h"

#include <string>
#include <vector>

namespace standin {

// Exit codes: 0 good (warnings or not), 1 errors in the source or files, 2 a command line that is not understood.
// `args` are UTF-8, without the program's name. Messages are appended to `messages`.
int RunCompiler(const Profile& profile, const std::vector<std::string>& args, std::string& messages);

}  // namespace standin
