#include "output/last_build.h"

#include <utility>

static BuildRecord g_lastBuild;

const BuildRecord& LastBuild() { return g_lastBuild; }

void LastBuildBegin(BuildRecord build) { g_lastBuild = std::move(build); }

void LastBuildEnd(bool success, bool programWritten) {
    g_lastBuild.success = success;
    g_lastBuild.programWritten = programWritten;
}
