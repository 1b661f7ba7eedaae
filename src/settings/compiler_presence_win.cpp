#include "settings/compiler_presence.h"

#include "base/path.h"
#include "base/worker.h"
#include "files/share_probe.h"
#include "settings/compiler_table.h"
#include "settings/settings.h"

#include <array>
#include <memory>
#include <string>

namespace {

struct CompilerSight {
    std::wstring path;
    bool found = false;
};
using CompilerSights = std::array<CompilerSight, kCompilerCount>;

struct LookRequest {
    HWND window;
    UINT message;
    std::unique_ptr<CompilerSights> compilers;
};

CompilerSights g_seen;
Worker g_look;

void Look(LookRequest& request) {
    for (CompilerSight& compiler : *request.compilers) compiler.found = IsCompilerPathValid(compiler.path.c_str());
    WorkerPost(request.window, request.message, std::move(request.compilers));
}

void LookWork(LookRequest& request, const WorkerCancel&) { Look(request); }

std::wstring ResolvedPath(std::uint32_t id) {
    wchar_t path[kPathCapacity] = {};
    CompilerPathResolved(id, path, kPathCapacity);
    return path;
}

}  // namespace

bool CompilerSeemsInstalled(std::uint32_t id) {
    const std::wstring path = ResolvedPath(id);
    const CompilerSight& seen = g_seen[id < kCompilerCount ? id : 0];
    return seen.path == path ? seen.found : !path.empty();
}

// A look at a local disk takes less time than the start of a thread, which every start of the program would wait for.
void CompilersLook(HWND window, UINT message) {
    if (!WorkerWait(g_look, 0)) return;
    LookRequest request{window, message, std::make_unique<CompilerSights>()};
    bool remote = false;
    for (std::uint32_t id = 0; id < kCompilerCount; ++id) {
        const std::wstring& path = (*request.compilers)[id].path = ResolvedPath(id);
        remote = remote || PathIsRemote(path.c_str());
    }
    if (remote)
        g_look = WorkerStart<LookWork>(std::move(request));
    else
        Look(request);
}

bool CompilersOnLooked(WPARAM wParam) {
    const auto found = WorkerTake<std::unique_ptr<CompilerSights>>(wParam);
    bool changed = false;
    for (std::uint32_t id = 0; id < kCompilerCount; ++id) {
        const bool before = CompilerSeemsInstalled(id);
        g_seen[id] = (*found)[id];
        changed = CompilerSeemsInstalled(id) != before || changed;
    }
    return changed;
}
