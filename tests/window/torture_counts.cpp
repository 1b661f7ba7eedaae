// What a process holds of the system, seen from outside.
#include "window/torture_driver.h"

#include <tlhelp32.h>
#include <winternl.h>

#include <algorithm>

namespace torture {

namespace {

int ThreadsOf(DWORD pid) {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry = {};
    entry.dwSize = sizeof(entry);
    int count = 0;
    for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry))
        count += entry.th32OwnerProcessID == pid;
    CloseHandle(snapshot);
    return count;
}

// Tries each number, because GetProcessHandleCount always gives 0 under Wine 8.
int HandlesOf(HANDLE process) {
    DWORD told = 0;
    if (GetProcessHandleCount(process, &told) && told > 0) return static_cast<int>(told);
    int count = 0;
    constexpr std::uintptr_t kGapThatEnds = 0x1000;
    for (std::uintptr_t value = 4, seen = 0; value < seen + kGapThatEnds; value += 4) {
        HANDLE copy = nullptr;
        if (!DuplicateHandle(process, reinterpret_cast<HANDLE>(value), GetCurrentProcess(), &copy, 0, FALSE, 0))
            continue;
        CloseHandle(copy);
        seen = value;
        ++count;
    }
    return count;
}

// Wine keeps the table of GDI objects in the process, as Windows did: 24 bytes for each, its type in the 15th.
int GdiObjectsOf(HANDLE process) {
    if (const DWORD told = GetGuiResources(process, GR_GDIOBJECTS)) return static_cast<int>(told);
    using Query = NTSTATUS(NTAPI*)(HANDLE, PROCESSINFOCLASS, void*, ULONG, ULONG*);
    const auto query = reinterpret_cast<Query>(
        reinterpret_cast<void (*)()>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQueryInformationProcess")));
    PROCESS_BASIC_INFORMATION basic = {};
    if (query(process, ProcessBasicInformation, &basic, sizeof(basic), nullptr) != 0) return 0;
    constexpr std::size_t kTableInPeb = 0xF8, kEntry = 24, kType = 14, kEntries = 0x4000;
    const auto at = [](const void* base, std::size_t offset) { return static_cast<const char*>(base) + offset; };
    const void* table = nullptr;
    std::vector<unsigned char> entries(kEntry * kEntries);
    if (!ReadProcessMemory(process, at(basic.PebBaseAddress, kTableInPeb), &table, sizeof(table), nullptr) ||
        table == nullptr || !ReadProcessMemory(process, table, entries.data(), entries.size(), nullptr))
        return 0;
    int count = 0;
    for (std::size_t i = 0; i < kEntries; ++i) count += (entries[i * kEntry + kType] & 0x7F) != 0;
    return count;
}

// New menus take the numbers that are free until only new numbers are left; then the last number tells how many were in
// use. Windows counts for itself.
int UserObjectsOf(HANDLE process) {
    if (const DWORD told = GetGuiResources(process, GR_USEROBJECTS)) return static_cast<int>(told);
    constexpr std::size_t kMost = 20000;
    constexpr unsigned kFirst = 0x20, kInARow = 64;
    const auto numberOf = [](HMENU menu) {
        return static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(menu) & 0xFFFF);
    };
    std::vector<HMENU> menus;
    for (unsigned row = 0; row < kInARow && menus.size() < kMost;) {
        const HMENU menu = CreateMenu();
        if (menu == nullptr) break;
        row = !menus.empty() && numberOf(menu) == numberOf(menus.back()) + 2 ? row + 1 : 0;
        menus.push_back(menu);
    }
    const int used = menus.empty() ? 0 : static_cast<int>((numberOf(menus.back()) - kFirst) / 2 + 1 - menus.size());
    for (const HMENU menu : menus) DestroyMenu(menu);
    return used;
}

int WindowsOf(DWORD pid) {
    struct Search {
        DWORD pid;
        int count;
    } search{pid, 0};
    EnumWindows(
        [](HWND window, LPARAM data) -> BOOL {
            auto& wanted = *reinterpret_cast<Search*>(data);
            DWORD owner = 0;
            GetWindowThreadProcessId(window, &owner);
            if (owner != wanted.pid) return TRUE;
            ++wanted.count;
            EnumChildWindows(
                window, [](HWND, LPARAM inner) -> BOOL { return ++reinterpret_cast<Search*>(inner)->count, TRUE; },
                data);
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&search));
    return search.count;
}

}  // namespace

std::vector<DWORD> StartedProcesses(const Editor& editor) {
    struct {
        JOBOBJECT_BASIC_PROCESS_ID_LIST list;
        ULONG_PTR more[256];
    } found = {};
    std::vector<DWORD> ids;
    if (!QueryInformationJobObject(editor.job, JobObjectBasicProcessIdList, &found, sizeof(found), nullptr)) return ids;
    for (DWORD i = 0; i < found.list.NumberOfProcessIdsInList; ++i) {
        const auto id = static_cast<DWORD>((&found.list.ProcessIdList[0])[i]);
        if (id != editor.pid) ids.push_back(id);
    }
    return ids;
}

Counts CountsNow(const Editor& editor) {
    return {.handles = HandlesOf(editor.process),
            .gdi = GdiObjectsOf(editor.process),
            .user = UserObjectsOf(editor.process),
            .windows = WindowsOf(editor.pid),
            .threads = ThreadsOf(editor.pid),
            .processes = static_cast<int>(StartedProcesses(editor).size())};
}

std::string TextOf(const Counts& counts) {
    const auto part = [](const char* name, int count) { return std::to_string(count) + name; };
    return part(" handles, ", counts.handles) + part(" GDI, ", counts.gdi) + part(" user, ", counts.user) +
           part(" windows, ", counts.windows) + part(" threads, ", counts.threads) +
           part(" processes", counts.processes);
}

}  // namespace torture
