#include "session/session_owner.h"

#include "base/bounded_text.h"
#include "base/handles.h"
#include "base/path.h"
#include "settings/settings_store.h"

#include <functional>
#include <string>

namespace {

struct Place {
    UniqueHandle mutex;  // held until the process ends; the system gives it to another then
    bool asked = false;
    bool ours = false;
};
Place g_place;

// The name of the place of a settings file. A name of the system must not have a backslash.
std::wstring PlaceName() {
    wchar_t ini[kPathCapacity] = {};
    GetIniPath(nullptr, ini, kPathCapacity);
    return L"Local\\KVX-Editor.Session." + std::to_wstring(std::hash<std::wstring>{}(PathKey(ini)));
}

}  // namespace

bool SessionTakePlace() {
    if (g_place.ours) return true;
    g_place.asked = true;
    if (!g_place.mutex) g_place.mutex.Reset(CreateMutexW(nullptr, FALSE, PlaceName().c_str()));
    // Without the system's help nobody could know of another copy; a session that is not saved would be worse.
    const DWORD result = g_place.mutex ? WaitForSingleObject(g_place.mutex.Get(), 0) : WAIT_OBJECT_0;
    g_place.ours = result == WAIT_OBJECT_0 || result == WAIT_ABANDONED;
    return g_place.ours;
}

bool SessionIsOurs() { return g_place.asked ? g_place.ours : SessionTakePlace(); }
