// The locals view: what the names of the procedure are worth in the frame that is shown, edited in the list itself. UI
// thread only.
#include "debugui/pane_locals.h"

#include "base/path.h"
#include "base/scan_text.h"
#include "base/texts.h"
#include "base/utf8.h"
#include "debugger/debug_inspect.h"
#include "debugger/debug_session.h"
#include "debugger/debug_state.h"
#include "debugui/pane_internal.h"
#include "debugui/pane_watches.h"

#include <array>
#include <vector>

namespace {

constexpr std::array<ListColumn, 4> kColumns = {{{English(L"Name"), 16, 8, true},
                                                 {English(L"Type"), 9, 7, true},
                                                 {English(L"Place"), 12, 8, true},
                                                 {English(L"Value"), 30, 12, true}}};

enum MenuCommand : UINT { kSetValue = 1, kEdit, kType, kWatch, kMemory, kRemove, kAdd, kTakeOverNames };

struct LocalsView {
    LocalValues values;
    std::vector<LocalRow> meanings;
    // As the rows show them, because the names may change while a field is open.
    NamedPlaces names;
    std::vector<DeclaredVariable> variables;
};
LocalsView g_view;

std::wstring ReadLocal(const NamedPlace& named, bool* problem) {
    const PaneFrame* const frame = PaneFrameNow();
    const Evaluation address = AddressOfName(named, frame->Names());
    *problem = !address.value;
    if (!address.value) return address.problem;
    std::wstring value = DebugShownValue(&g_debugger, *address.value, named.kind);
    *problem = IsUnreadableWatch(value);
    return value;
}

std::wstring HeadingOf(const PaneFrame& frame) {
    const std::wstring file(FileNameOf(frame.scope.file));
    const std::string name = frame.scope.Name();
    const std::wstring where =
        name.empty() ? TextWith(L"Outside procedures, {1}", {file}) : Utf8ToWideText(name) + L", " + file;
    return frame.index > 0 ? TextWith(L"{1} (frame {2})", {where, std::to_wstring(frame.index)}) : where;
}

void FillLocals(PaneContent& content) {
    const PaneFrame* const frame = PaneFrameNow();
    g_view.meanings.clear();
    g_view.names.clear();
    g_view.variables.clear();
    if (frame == nullptr || frame->scope.file.empty()) {
        content.hint = Text(L"There is no source here. Names belong to the procedures of a source.");
        return;
    }
    const SourceScope& scope = frame->scope;
    g_view.names = NamesOfProcedure(scope.file, scope.Name());
    if (scope.procedure != nullptr) g_view.variables = scope.procedure->variables;
    LocalRows made = LocalRowsOf({.serial = PaneProgramNow().serial,
                                  .owner = scope.file + L"|" + Utf8ToWideText(scope.Name()) + L"|" +
                                           std::to_wstring(frame->registers.general[kBp]),
                                  .heading = HeadingOf(*frame),
                                  .x64 = frame->registers.x64,
                                  .names = g_view.names,
                                  .variables = g_view.variables,
                                  .lost = LostProcedure(AllPlaceNames(), scope.file, scope.all),
                                  .read = ReadLocal},
                                 &g_view.values);
    content.rows = std::move(made.rows);
    g_view.meanings = std::move(made.meanings);
}

LocalRow RowAt(int row) {
    return row >= 0 && row < static_cast<int>(g_view.meanings.size()) ? g_view.meanings[static_cast<std::size_t>(row)]
                                                                      : LocalRow{};
}
const NamedPlace* NamedAt(int row) {
    const LocalRow at = RowAt(row);
    return at.meaning == LocalMeaning::Named && at.index < g_view.names.size() ? &g_view.names[at.index] : nullptr;
}

// Puts another name, place or kind in the place of the old one.
std::wstring ChangeNamed(const NamedPlace& old, const NamedPlace& changed) {
    return PaneNamePlace(Utf8ToWideText(NamedPlaceText(changed)), old.name, changed.kind);
}

void EditDefinition(int row) {
    const NamedPlace* const named = NamedAt(row);
    const std::string before = named != nullptr ? named->name : std::string();
    const WatchKind kind = named != nullptr ? named->kind : WatchKind::Long;
    ListViewEditRow(PaneList(), row, named != nullptr ? Utf8ToWideText(NamedPlaceText(*named)) : L"", false,
                    [before, kind](const std::wstring& text) { return PaneNamePlace(text, before, kind); });
}

void EditLocalName(int row) {
    const NamedPlace old = *NamedAt(row);
    ListViewEditCell(PaneList(), row, kLocalName, Utf8ToWideText(old.name), false, [old](const std::wstring& text) {
        std::wstring problem = PlaceNameProblem(PaneUtf8(text));
        return !problem.empty() ? problem
                                : ChangeNamed(old, {.name = PaneUtf8(text), .place = old.place, .kind = old.kind});
    });
}

// Of a name, or of a variable that has none yet.
void EditLocalPlace(int row, const std::wstring& typed) {
    const LocalRow at = RowAt(row);
    NamedPlace old;
    bool isNew = at.meaning == LocalMeaning::Declared;
    if (isNew) {
        const DeclaredVariable& variable = g_view.variables[at.index];
        old = {.name = variable.name, .place = {}, .kind = WatchKindOfType(variable.type).value_or(WatchKind::Long)};
    } else {
        old = *NamedAt(row);
    }
    const std::wstring text = !typed.empty() ? typed : Utf8ToWideText(old.place);
    ListViewEditCell(PaneList(), row, kLocalPlace, text, !typed.empty(), [old, isNew](const std::wstring& place) {
        if (isNew && place.empty()) return std::wstring{};
        return PaneNamePlace(Utf8ToWideText(old.name) + L" = " + place, isNew ? "" : old.name, old.kind);
    });
}

void EditLocalValue(int row) {
    const NamedPlace named = *NamedAt(row);
    bool problem = false;
    const std::wstring value = PaneFrameNow() != nullptr ? ReadLocal(named, &problem) : L"";
    if (value.empty() || problem) return EditDefinition(row);
    ListViewEditCell(
        PaneList(), row, kLocalValue, WatchEditText(named.kind, value), false, [named](const std::wstring& text) {
            std::wstring refused = PaneWriteValue(named.kind, PaneEvaluatePlace(Utf8ToWideText(named.name)), text);
            DebugPaneInvalidate();
            return refused;
        });
}

void ChooseLocalKind(int row) {
    const NamedPlace old = *NamedAt(row);
    if (const auto kind = PaneAskKind(row, kLocalKind, old.kind))
        ChangeNamed(old, {.name = old.name, .place = old.place, .kind = *kind});
}

void RemoveLocal(int row) {
    const NamedPlace* const named = NamedAt(row);
    const PaneFrame* const frame = PaneFrameNow();
    if (named == nullptr || frame == nullptr) return;
    NamedPlaces names = g_view.names;
    names.erase(names.begin() + (named - g_view.names.data()));
    PaneTellNames(KeepNames(frame->scope.file, frame->scope.Name(), std::move(names)));
    DebugPaneInvalidate();
}

void TakeOverLost() {
    const PaneFrame* const frame = PaneFrameNow();
    if (frame == nullptr) return;
    const std::wstring file = frame->scope.file;
    const std::string procedure = frame->scope.Name();
    const NamedProcedure* const lost = LostProcedure(AllPlaceNames(), file, frame->scope.all);
    if (lost == nullptr) return;
    const NamedProcedure old = *lost;
    PaneTellNames(KeepNames(file, procedure, old.names));
    KeepNames(file, old.procedure, {});
    DebugPaneInvalidate();
}

void DoLocalAction(LocalAction action, int row) {
    if (!PaneProgramNow().stopped) return;
    switch (action) {
        case LocalAction::EditName: EditLocalName(row); break;
        case LocalAction::ChooseKind: ChooseLocalKind(row); break;
        case LocalAction::EditPlace: EditLocalPlace(row, {}); break;
        case LocalAction::EditValue: EditLocalValue(row); break;
        case LocalAction::EditDefinition: EditDefinition(row); break;
        case LocalAction::TakeOver: TakeOverLost(); break;
        case LocalAction::None: break;
    }
}

void OnLocalActivated(int row, int column) { DoLocalAction(LocalActionOf(RowAt(row).meaning, column), row); }

// One click selects; F2 edits the whole definition.
void OnLocalEdit(int row, int column) {
    if (column != -1) return;
    const LocalMeaning meaning = RowAt(row).meaning;
    DoLocalAction(meaning == LocalMeaning::Named ? LocalAction::EditDefinition : LocalActionOf(meaning, -1), row);
}

void OnLocalTyped(int row, wchar_t character) {
    if (!PaneProgramNow().stopped) return;
    const LocalMeaning meaning = RowAt(row).meaning;
    const std::wstring text(1, character);
    if (meaning == LocalMeaning::Declared) return EditLocalPlace(row, text);
    if (meaning != LocalMeaning::New) return;
    ListViewEditRow(PaneList(), row, text, true,
                    [](const std::wstring& typed) { return PaneNamePlace(typed, {}, WatchKind::Long); });
}

void AddLocal() {
    const int last = static_cast<int>(g_view.meanings.size()) - 1;
    if (last < 0 || !PaneProgramNow().stopped) return;
    ListViewSelect(PaneList(), last);
    EditDefinition(last);
}

bool OnLocalKey(int row, int key) {
    if (key == VK_DELETE) RemoveLocal(row);
    if (key == VK_INSERT) AddLocal();
    return key == VK_DELETE || key == VK_INSERT;
}

void ShowLocalMenu(int row, POINT screen) {
    const NamedPlace* const named = NamedAt(row);
    const bool there = named != nullptr && PaneProgramNow().stopped;
    const std::wstring name = there ? Utf8ToWideText(named->name) : L"";
    const bool lost = RowAt(row).meaning == LocalMeaning::Lost;
    const bool defines = !lost && RowAt(row).meaning != LocalMeaning::Heading;
    const std::array<MenuItem, 13> items = {
        {{kSetValue, Text(L"Set &Value\tEnter"), there},
         {kEdit, Text(L"&Edit Definition\tF2"), defines && PaneProgramNow().stopped},
         {kType, Text(L"&Type..."), there},
         {kAdd, Text(L"&Name a Place\tIns"), PaneProgramNow().stopped},
         {kTakeOverNames, Text(L"Take &Over Names"), lost},
         {0, nullptr},
         {kWatch, Text(L"Add &Watch"), there},
         {kMemory, Text(L"Show &Memory There"), there},
         {0, nullptr},
         {kPaneCopyRow, Text(L"&Copy\tCtrl+C")},
         {kPaneCopyAll, Text(L"Copy A&ll")},
         {0, nullptr},
         {kRemove, Text(L"&Remove\tDel"), there}}};
    const UINT chosen = PaneShowMenu(items, screen);
    if (chosen == kPaneCopyRow || chosen == kPaneCopyAll) return PaneCopyRows(chosen);
    if (!PaneProgramNow().stopped) return;
    switch (chosen) {
        case kSetValue: DoLocalAction(LocalAction::EditValue, row); break;
        case kEdit: OnLocalEdit(row, -1); break;
        case kType: DoLocalAction(LocalAction::ChooseKind, row); break;
        case kAdd: AddLocal(); break;
        case kTakeOverNames: TakeOverLost(); break;
        case kWatch: PaneAddWatch(name); break;
        case kMemory: PaneShowMemory(name); break;
        case kRemove: RemoveLocal(row); break;
        default: break;
    }
}

constexpr ListKind kList = {.columns = kColumns,
                            .activate = OnLocalActivated,
                            .edit = OnLocalEdit,
                            .key = OnLocalKey,
                            .typed = OnLocalTyped,
                            .menu = ShowLocalMenu};

}  // namespace

void PaneTellNames(const std::wstring& problem) {
    if (!problem.empty()) DebugSay(kDebugOrange, L"[Debug] %s\n", problem.c_str());
}

std::wstring PaneNamePlace(const std::wstring& definition, const std::string& before, WatchKind kind) {
    if (before.empty() && definition.find_first_not_of(L" \t") == std::wstring::npos) return {};
    const PaneFrame* const frame = PaneFrameNow();
    if (frame == nullptr)
        return Text(L"Names can be given here while the program is stopped; at any time by Debug > Name a Place.");
    if (frame->scope.file.empty()) return Text(L"There is no source here that a name could belong to.");
    const std::string text = PaneUtf8(definition);
    if (!IsNamedDefinition(text))
        return TextWith(L"A name and its place are wanted: i = {1}-4, LONG", {FramePointerName(frame->registers.x64)});
    const std::string name(NameAtStart(WithoutLeadingBlanks(text)));
    if (before.empty() && frame->scope.procedure != nullptr)
        for (const DeclaredVariable& variable : frame->scope.procedure->variables)
            if (CompareNames(variable.name, WithoutTypeSuffix(name)) == 0)
                kind = WatchKindOfType(variable.type).value_or(kind);
    const NamedInput input = NamedPlaceOf(text, kind, frame->registers.x64);
    if (!input.problem.empty()) return input.problem;
    NamedPlaces names = NamesOfProcedure(frame->scope.file, frame->scope.Name());
    std::wstring problem = PutName(&names, input.named, before);
    if (!problem.empty()) return problem;
    PaneTellNames(KeepNames(frame->scope.file, frame->scope.Name(), std::move(names)));
    DebugPaneInvalidate();
    return {};
}

const PaneView kLocalsView = {.title = English(L"Locals"), .list = &kList, .ofStop = true, .fill = FillLocals};
