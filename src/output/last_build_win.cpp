#include "output/last_build.h"

#include <utility>

static BuildRecord g_lastBuild;

const BuildRecord& LastBuild() { return g_lastBuild; }

void LastBuildBegin(BuildRecord build) { g_lastBuild = std::move(build); }

void LastBuildEnd(bool success) { g_lastBuild.success = success; }
