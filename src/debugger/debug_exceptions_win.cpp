// Where an exception was raised, as text. UI thread only.
#include "debugger/debug_inspect.h"
#include "debugger/debug_session.h"
#include "debugger/exception_rules.h"

#include "base/bounded_text.h"
#include "base/decode.h"
#include "base/handles.h"
#include "base/path.h"
#include "program/line_map.h"

#include <algorithm>
#include <cstring>

namespace {

// The name of a file of the map without its folder; that of the source when the map names no files.
std::wstring FileNameOf(const DebuggerState& state, std::uint32_t fileId) {
    std::wstring path = state.map.fileCount == 0 ? DebugSourcePath() : L"";
    if (const char* const bytes = SdbgFileIdToPath(&state.map, fileId)) {
        const HeapBlock<wchar_t> decoded(DecodeCompilerText(bytes, std::strlen(bytes)));
        if (decoded) path = decoded.get();
    }
    std::ranges::replace(path, L'/', L'\\');
    wchar_t name[kPathCapacity] = {};
    PathGetFile(path.c_str(), name, kPathCapacity);
    return name;
}

}  // namespace

std::wstring DebugExceptionText(const DebuggerState& state, const DEBUG_EVENT& event, bool passed) {
    const EXCEPTION_RECORD& record = event.u.Exception.ExceptionRecord;
    ExceptionReport report = {.code = record.ExceptionCode,
                              .firstChance = event.u.Exception.dwFirstChance != 0,
                              .x64 = state.isX64 != 0,
                              .place = {},
                              .passed = passed};
    const DWORD parameters = std::min<DWORD>(record.NumberParameters, 2);
    for (DWORD i = 0; i < parameters; ++i) report.information[i] = record.ExceptionInformation[i];
    auto address = reinterpret_cast<std::uint64_t>(record.ExceptionAddress);
    std::uint32_t fileId = 0;
    std::uint32_t line = 0;
    bool found = DebugLineAt(&state, address, &fileId, &line);
    if (!found && DebugPlaceInProgram(&state, event.dwThreadId, &address)) {
        report.called = true;
        found = DebugLineAt(&state, address - 1, &fileId, &line);
    }
    if (found) report.place = FileNameOf(state, fileId) + L":" + std::to_wstring(line);
    return ExceptionText(report);
}
