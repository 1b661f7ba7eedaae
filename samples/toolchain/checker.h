// Resolves every name, gives every expression its type, inserts conversions, replaces FOR and SELECT CASE by simpler
// forms, and warns.
#pragma once

#include "ast.h"

namespace standin {

inline constexpr int64_t kMaxFrameBytes = 1 << 20;
inline constexpr int64_t kMaxDataBytes = 128 << 20;

void CheckProgram(Sources& sources, Program& program);

}  // namespace standin
