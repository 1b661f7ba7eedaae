// The registers view: those of the shown thread; general registers can be edited. UI thread only.
#include "debugui/pane_internal.h"

#include "base/texts.h"
#include "debugger/debug_inspect.h"
#include "debugger/debug_session.h"
#include "debugger/debug_state.h"
#include "debugger/expressions.h"

#include <array>

namespace {

enum Column : int { kName, kValue, kMeaning };
constexpr std::array<ListColumn, 3> kColumns = {
    {{English(L"Register"), 7, 7, true}, {English(L"Value"), 33, 22, true}, {English(L"Meaning"), 21, 10, true}}};

std::vector<ListRow> g_rows;

void FillRegisters(PaneContent& content) {
    const PaneProgram& program = PaneProgramNow();
    if (!program.registers) {
        content.hint = Text(L"The registers of this thread cannot be read.");
        return;
    }
    g_rows = RegisterPaneRows(*program.registers, program.before ? &*program.before : nullptr);
    for (ListRow& row : g_rows)
        if (row.cells[kName] == L"RIP" || row.cells[kName] == L"EIP")
            row.cells[kMeaning] = PanePlaceText(program.registers->ip);
    content.rows = g_rows;
}

std::wstring CommitRegister(const std::wstring& name, const std::wstring& text) {
    const PaneProgram& program = PaneProgramNow();
    if (!program.stopped || !program.registers) return Text(L"The program is not stopped");
    const Evaluation typed = RegisterInput(*program.registers, PaneUtf8(text));
    if (!typed.value) return typed.problem;
    if (!DebugSetRegister(&g_debugger, program.thread, name.c_str(), *typed.value))
        return Text(L"The register cannot be written");
    DebugPaneInvalidate();
    return {};
}

void EditRegister(int row) {
    const PaneProgram& program = PaneProgramNow();
    if (row < 0 || row >= static_cast<int>(g_rows.size()) || !program.stopped) return;
    const ListRow& shown = g_rows[static_cast<std::size_t>(row)];
    const std::wstring name = shown.cells[kName];
    if (!IsGeneralRegister(g_debugger.isX64 != 0, name)) return;
    const std::wstring& value = shown.cells[kValue];
    const std::size_t first = std::min(value.find_first_not_of(L'0'), value.size() - 1);
    ListViewEditCell(PaneList(), row, kValue, L"0x" + value.substr(first), false,
                     [name](const std::wstring& text) { return CommitRegister(name, text); });
}

// One click on a value selects its row; F2 edits it.
void OnRegisterEdit(int row, int column) {
    if (column == -1) EditRegister(row);
}

void OnRegisterActivated(int row, int) { EditRegister(row); }

enum MenuCommand : UINT { kEdit = 1, kWatch, kMemory, kCode, kGo };

void ShowRegisterMenu(int row, POINT screen) {
    if (row < 0 || row >= static_cast<int>(g_rows.size())) return;
    const PaneProgram& program = PaneProgramNow();
    const std::wstring name = g_rows[static_cast<std::size_t>(row)].cells[kName];
    const bool x64 = g_debugger.isX64 != 0;
    const bool general = IsGeneralRegister(x64, name);
    const bool pointer = name == L"RIP" || name == L"EIP";
    const std::uint64_t value = program.registers ? RegisterByName(*program.registers, PaneUtf8(name)).value_or(0) : 0;
    const bool code = (general || pointer) && program.stopped && DebugIsExecutable(&g_debugger, value);
    std::uint32_t fileId = 0;
    std::uint32_t line = 0;
    const bool source = code && DebugLineAt(&g_debugger, value, &fileId, &line);
    const std::array<MenuItem, 9> items = {
        {{kEdit, Text(L"&Edit Value\tEnter"), general && program.stopped},
         {kWatch, Text(L"Add &Watch"), general || pointer},
         {kMemory, Text(L"Show &Memory at Value"), (general || pointer) && program.stopped},
         {0, nullptr},
         {kGo, Text(L"&Go to Source of Value"), source},
         {kCode, Text(L"Go to &Disassembly of Value"), code},
         {0, nullptr},
         {kPaneCopyRow, Text(L"&Copy\tCtrl+C")},
         {kPaneCopyAll, Text(L"Copy A&ll")}}};
    switch (const UINT chosen = PaneShowMenu(items, screen); chosen) {
        case kEdit: EditRegister(row); break;
        case kWatch: PaneAddWatch(name, WatchKind::Value); break;
        case kMemory: PaneShowMemory(L"0x" + HexText(value, 1)); break;
        case kCode: PaneShowCode(L"0x" + HexText(value, 1)); break;
        case kGo: PaneGoTo(fileId, line); break;
        default: PaneCopyRows(chosen); break;
    }
}

constexpr ListKind kList = {
    .columns = kColumns, .activate = OnRegisterActivated, .edit = OnRegisterEdit, .menu = ShowRegisterMenu};

}  // namespace

const PaneView kRegistersView = {.title = English(L"Registers"), .list = &kList, .ofStop = true, .fill = FillRegisters};
