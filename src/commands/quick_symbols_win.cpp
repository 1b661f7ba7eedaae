// The symbols of the active document and those of the project, in the window of the file finder. A worker makes the texts
// to match. UI thread, but for the worker.
#include "commands/quick_symbols.h"

#include "base/path.h"
#include "base/texts.h"
#include "base/utf8.h"
#include "base/worker.h"
#include "commands/quick_open.h"
#include "commands/quick_source.h"
#include "documents/document_row.h"
#include "resources/ids.h"
#include "symbols/symbol_place.h"
#include "ui/ui_state.h"

#include <memory>
#include <utility>
#include <vector>

namespace {

constexpr std::size_t kMostNames = 500'000;  // of a project; more are left out

// The texts of some tables, and the symbol of each.
struct SymbolNames {
    std::vector<ReachedText> texts;  // by index
    FuzzyIndices indices;
    std::vector<std::vector<std::uint32_t>> symbols;  // by index and entry
};
struct NamesRequest {
    HWND window = nullptr;
    unsigned number = 0;
    bool ofProject = false;
    std::vector<ReachedText> texts;
};
struct NamesResult {
    unsigned number = 0;
    SymbolNames names;
};

struct SymbolFinder {
    SymbolNames names;
    unsigned number = 0;      // of the last question
    unsigned generation = 0;  // of `names`
    bool waiting = false;
    Worker worker;
};
SymbolFinder g_finder;

// Variables of procedures are found in their procedure.
bool IsListed(SymbolKind kind) {
    return kind != SymbolKind::Local && kind != SymbolKind::Parameter && kind != SymbolKind::Include;
}

// "report.inc SUB PrintReport": the name stands last, because it is what is matched first.
void AddNames(const ReachedText& text, bool withFile, SymbolNames* names) {
    auto index = std::make_shared<FuzzyIndex>();
    std::vector<std::uint32_t> symbols;
    const std::wstring file = withFile ? std::wstring(FileNameOf(text.path)) + L" " : L"";
    const SymbolTable& table = *text.table;
    for (std::uint32_t i = 0; i < table.symbols.size(); ++i) {
        const Symbol& symbol = table.symbols[i];
        if (!IsListed(symbol.kind) || (withFile && symbol.kind == SymbolKind::Label)) continue;
        // Of two names that match alike the one with a body comes first.
        const bool declares = symbol.Is(kSymbolDeclare);
        const std::wstring before = file + (declares ? L"DECLARE " : L"") + SymbolKindText(symbol.kind) + L" ";
        const std::wstring name = Utf8ToWideText(SymbolName(table, symbol));
        if (FuzzyAdd(index.get(), before + name, before.size(), declares ? -1 : 0)) symbols.push_back(i);
    }
    names->texts.push_back(text);
    names->indices.push_back(std::move(index));
    names->symbols.push_back(std::move(symbols));
}

void NamesWork(NamesRequest& request, const WorkerCancel& cancel) {
    auto result = std::make_unique<NamesResult>();
    result->number = request.number;
    std::size_t count = 0;
    for (const ReachedText& text : request.texts) {
        if (cancel.Asked()) return;
        if (count > kMostNames) break;
        AddNames(text, request.ofProject, &result->names);
        count += result->names.symbols.back().size();
    }
    WorkerPost(request.window, MSG_SYMBOLS_PLACES, std::move(result), kSymbolNamesBuilt);
}

void BuildNames(unsigned number, bool ofProject, std::vector<ReachedText> texts) {
    if (number != g_finder.number) return;
    g_finder.worker = WorkerStart<NamesWork>(NamesRequest{g_ui.hMainWnd, number, ofProject, std::move(texts)});
}

unsigned BeginNames() {
    WorkerAskToEnd(g_finder.worker);
    g_finder.names = {};
    g_finder.waiting = true;
    ++g_finder.generation;
    return ++g_finder.number;
}

void BeginDocument(HWND) {
    const unsigned number = BeginNames();
    const DocumentId document = ActiveDocumentId();
    SymbolsWhenCurrent(document, [number, document] {
        BuildNames(number, false, {{L"", document, SymbolsOfDocument(document)}});
    });
}

void BeginProject(HWND) {
    const unsigned number = BeginNames();
    SymbolsWhenProjectKnown([number] { BuildNames(number, true, SymbolsInProject()); });
}

const FuzzyIndices& NamesNow(const QuickQuery&) { return g_finder.names.indices; }

struct NamedSymbol {
    const ReachedText* text = nullptr;
    std::uint32_t index = 0;
    const Symbol& Get() const { return text->table->symbols[index]; }
};
NamedSymbol SymbolOf(const QuickItem& item) {
    const FuzzyPlace place = FuzzyPlaceOf(g_finder.names.indices, item.number);
    return {&g_finder.names.texts[place.index], g_finder.names.symbols[place.index][place.entry]};
}

QuickExtra ExtraOfSymbol(const QuickItem& item) {
    return {.keys = TextWith(L"line {1}", {std::to_wstring(SymbolOf(item).Get().line + 1)})};
}

QuickPreview PreviewOfSymbol(const QuickItem& item, const QuickQuery&) {
    const NamedSymbol symbol = SymbolOf(item);
    const bool open = TabBarFindDocument(symbol.text->document) >= 0;
    return {.document = open ? symbol.text->document : 0,
            .path = symbol.text->path,
            .line = static_cast<int>(symbol.Get().line) + 1};
}

void GoToSymbol(const QuickItem& item, const QuickQuery&) {
    const NamedSymbol symbol = SymbolOf(item);
    SymbolGoTo(SpotOf(*symbol.text, symbol.index));
}

std::wstring SymbolsStatus(bool none) {
    if (g_finder.waiting) return Text(L"reading...");
    if (SymbolsProjectLimited()) return Text(L"the project has more, which are left out");
    return none ? Text(L"nothing matches") : L"";
}

constexpr QuickSource SymbolSource(wchar_t prefix, const wchar_t* title, void (*begin)(HWND)) {
    return {.prefix = prefix,
            .title = title,
            .begin = begin,
            .texts = NamesNow,
            .generation = [] { return g_finder.generation; },
            .extra = ExtraOfSymbol,
            .status = SymbolsStatus,
            .preview = PreviewOfSymbol,
            .accept = GoToSymbol};
}

}  // namespace

const QuickSource kQuickDocumentSymbols = SymbolSource(L'@', English(L"symbols of the document"), BeginDocument);
const QuickSource kQuickProjectSymbols = SymbolSource(L'#', English(L"symbols of the project"), BeginProject);

void QuickSymbolsOnBuilt(WPARAM wParam) {
    const auto result = WorkerTake<std::unique_ptr<NamesResult>>(wParam);
    if (result->number != g_finder.number) return;
    g_finder.names = std::move(result->names);
    g_finder.waiting = false;
    ++g_finder.generation;
    QuickOpenRenew();
}
