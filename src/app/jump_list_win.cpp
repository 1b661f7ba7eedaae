// The jump list: a category of links that start this program with a file; the running window takes it. It needs no
// registration of file types. Nothing happens on a system without such lists.
#include "app/jump_list.h"

#include "base/path.h"
#include "base/texts.h"
#include "base/worker.h"
#include "settings/settings_state.h"

#include <windows.h>

#include <propsys.h>
#include <shlobj.h>

#include <memory>
#include <string>
#include <vector>

namespace {

constexpr DWORD kLastWaitMs = 500;
constexpr PROPERTYKEY kTitle = {{0xF29F85E0, 0x4FF9, 0x1068, {0xAB, 0x91, 0x08, 0x00, 0x2B, 0x27, 0xB3, 0xD9}}, 2};

struct ReleaseCom {
    void operator()(IUnknown* object) const { object->Release(); }
};
template <typename Interface>
using Com = std::unique_ptr<Interface, ReleaseCom>;

template <typename Interface>
Com<Interface> MakeCom(REFCLSID type) {
    void* object = nullptr;
    if (FAILED(CoCreateInstance(type, nullptr, CLSCTX_INPROC_SERVER, __uuidof(Interface), &object))) return nullptr;
    return Com<Interface>(static_cast<Interface*>(object));
}

struct JumpTask {
    std::wstring program;
    std::vector<std::wstring> files;  // newest first
};

struct JumpState {
    std::vector<std::wstring> shown;
    Worker worker;
};
JumpState g_jump;

std::wstring ArgumentsOf(const std::wstring& file) { return L"\"" + file + L"\""; }

Com<IShellLinkW> LinkTo(const std::wstring& program, const std::wstring& file) {
    auto link = MakeCom<IShellLinkW>(CLSID_ShellLink);
    if (link == nullptr) return nullptr;
    link->SetPath(program.c_str());
    link->SetArguments(ArgumentsOf(file).c_str());
    link->SetDescription(file.c_str());
    link->SetIconLocation(program.c_str(), 0);
    void* found = nullptr;
    if (FAILED(link->QueryInterface(__uuidof(IPropertyStore), &found))) return nullptr;
    const Com<IPropertyStore> properties(static_cast<IPropertyStore*>(found));
    std::wstring name(FileNameOf(file));
    PROPVARIANT title = {};
    title.vt = VT_LPWSTR;
    title.pwszVal = name.data();  // copied by SetValue
    if (FAILED(properties->SetValue(kTitle, title)) || FAILED(properties->Commit())) return nullptr;
    return link;
}

// The system refuses a list with links that the user has removed from it.
bool WasRemoved(IObjectArray& removed, const std::wstring& file) {
    UINT count = 0;
    removed.GetCount(&count);
    for (UINT i = 0; i < count; ++i) {
        void* found = nullptr;
        if (FAILED(removed.GetAt(i, __uuidof(IShellLinkW), &found))) continue;
        const Com<IShellLinkW> link(static_cast<IShellLinkW*>(found));
        wchar_t arguments[INFOTIPSIZE] = {};
        if (SUCCEEDED(link->GetArguments(arguments, INFOTIPSIZE)) && ArgumentsOf(file) == arguments) return true;
    }
    return false;
}

// A failure leaves the list as it was, which nobody needs to be told.
void PutList(const JumpTask& task) {
    const auto list = MakeCom<ICustomDestinationList>(CLSID_DestinationList);
    const auto links = MakeCom<IObjectCollection>(CLSID_EnumerableObjectCollection);
    if (list == nullptr || links == nullptr) return;
    UINT room = 0;
    void* found = nullptr;
    if (FAILED(list->BeginList(&room, __uuidof(IObjectArray), &found))) return;
    const Com<IObjectArray> removed(static_cast<IObjectArray*>(found));
    UINT count = 0;
    for (const std::wstring& file : task.files) {
        if (count == room || WasRemoved(*removed, file)) continue;
        const auto link = LinkTo(task.program, file);
        if (link != nullptr && SUCCEEDED(links->AddObject(link.get()))) ++count;
    }
    if (count == 0 || SUCCEEDED(list->AppendCategory(Text(L"Recent Files"), links.get()))) list->CommitList();
}

void WriteJumpList(JumpTask& task, const WorkerCancel&) {
    if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return;
    PutList(task);
    CoUninitialize();
}

}  // namespace

void JumpListOnInactive() {
    std::vector<std::wstring> files;
    for (int i = 0; i < g_settings.mruCount; ++i) files.emplace_back(g_settings.mruFiles[i]);
    if (files == g_jump.shown || !WorkerWait(g_jump.worker, 0)) return;
    wchar_t program[4096];
    const DWORD length = GetModuleFileNameW(nullptr, program, 4096);
    if (length == 0 || length == 4096) return;
    g_jump.shown = files;
    g_jump.worker = WorkerStart<WriteJumpList>(JumpTask{{program, length}, std::move(files)});
}

void JumpListEnd() { WorkerWait(g_jump.worker, kLastWaitMs); }
