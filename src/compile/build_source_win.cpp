#include "compile/build_source.h"

#include "base/events.h"
#include "base/path.h"
#include "base/texts.h"
#include "compile/include_paths.h"
#include "compile/include_walk.h"
#include "documents/document_row.h"
#include "documents/file_work.h"
#include "files/file_io.h"
#include "files/share_probe.h"
#include "output/last_build.h"
#include "scintilla/sci.h"
#include "settings/compiler_table.h"
#include "settings/settings_state.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace {

std::optional<BuildProject> g_buildProject;

const DocumentTab* ActiveDocument() {
    return IsTabIndex(g_documents.activeTab) ? &TabAt(g_documents.activeTab) : nullptr;
}

bool IsAtHand() {
    if (!g_buildProject) return false;
    const DocumentTab* document = ActiveDocument();
    return document == nullptr || !document->hasFile || ProjectHoldsFile(*g_buildProject, document->path);
}

constexpr LRESULT kLookedAt = 4 << 20;  // bytes of a text

// Empty for a text that is too large to be looked at.
std::string_view TextOf(const DocumentTab& tab) {
    const LRESULT length = SciSend(tab.editor, SCI_GETLENGTH);
    if (tab.editor == nullptr || length > kLookedAt) return {};
    return {reinterpret_cast<const char*>(SciSend(tab.editor, SCI_GETCHARACTERPOINTER)),
            static_cast<std::size_t>(length)};
}

bool MayBeProgram(const DocumentTab& tab) { return tab.hasFile && tab.editor != nullptr && !IsIncludeFile(tab.path); }

// What the worker looks through: the open texts as they stand in the editor, and files.
struct ProgramSearch {
    struct Text {
        std::wstring path;
        std::string text;
        int tab = -1;  // of a source that may be the program
        std::vector<std::wstring> folders = {};
    };
    std::vector<Text> open;
    std::wstring name;
    std::shared_ptr<FileProgress> progress = std::make_shared<FileProgress>();
    std::vector<int> found;  // tabs
};

std::optional<std::string> ReadIncluded(const ProgramSearch& search, const std::wstring& path) {
    for (const ProgramSearch::Text& each : search.open)
        if (SamePathText(each.path, path)) return each.text;
    std::string text;
    if (search.progress->cancel || !PathAnswers(path.c_str()) || !FileExists(path.c_str()) ||
        !ReadSharedFile(path, static_cast<std::size_t>(kLookedAt), &text))
        return std::nullopt;
    return text;
}

void SearchPrograms(ProgramSearch& search) {
    for (const ProgramSearch::Text& each : search.open) {
        if (each.tab < 0 || search.progress->cancel) continue;
        const IncludeWalk walk = {.folders = each.folders,
                                  .read = [&](const std::wstring& path) { return ReadIncluded(search, path); }};
        if (IncludesFileThrough(walk, each.path, each.text, search.name)) search.found.push_back(each.tab);
    }
}

std::vector<std::wstring> FoldersOfIncludes(const DocumentTab& tab) {
    std::vector<std::wstring> folders = IncludeFolders(CompilerIncludePath(static_cast<std::uint32_t>(tab.compilerId)));
    for (std::wstring& each : IncludeFolders(g_settings.includePath)) folders.push_back(std::move(each));
    return folders;
}

// The open sources that include the file through other files. The window waits for the worker, so no document comes or
// goes meanwhile.
std::vector<int> ProgramsThrough(std::wstring_view name) {
    constexpr std::size_t kCopied = 32 << 20;  // bytes of open texts
    const auto search = std::make_shared<ProgramSearch>();
    search->name = name;
    std::size_t copied = 0;
    for (int i = 0; i < TabCount() && copied < kCopied; ++i) {
        const DocumentTab& tab = TabAt(i);
        if (!tab.hasFile || tab.editor == nullptr) continue;
        search->open.push_back({tab.path, std::string(TextOf(tab)), MayBeProgram(tab) ? i : -1});
        if (MayBeProgram(tab)) search->open.back().folders = FoldersOfIncludes(tab);
        copied += search->open.back().text.size();
    }
    if (std::ranges::none_of(search->open, [](const ProgramSearch::Text& each) { return each.tab >= 0; })) return {};
    const bool ended = FileWorkRun({.verb = Text(L"Looking for the program of"),
                                    .label = search->name.c_str(),
                                    .progress = search->progress,
                                    .work = [search] { SearchPrograms(*search); }});
    return ended && !search->progress->cancel ? search->found : std::vector<int>{};
}

}  // namespace

void BuildUseProject(std::optional<BuildProject> project) {
    g_buildProject = std::move(project);
    g_events.projectChanged();
}

const std::optional<BuildProject>& BuildProjectNow() { return g_buildProject; }

std::optional<BuildProject> BuildProjectAtHand() { return IsAtHand() ? g_buildProject : std::nullopt; }

std::optional<BuildProject> BuildProjectOfSource(std::wstring_view source) {
    const bool its = g_buildProject && !source.empty() && SamePathText(g_buildProject->source, source);
    return its ? g_buildProject : std::nullopt;
}

std::wstring BuildSourceNow() {
    if (IsAtHand()) return g_buildProject->source;
    const DocumentTab* document = ActiveDocument();
    return document != nullptr && document->hasFile ? document->path : L"";
}

int TabOfProgramWith(std::wstring_view includeFile, bool* several) {
    std::vector<int> found;
    const std::wstring_view name = FileNameOf(includeFile);
    for (int i = 0; i < TabCount(); ++i)
        if (MayBeProgram(TabAt(i)) && IncludesFile(TextOf(TabAt(i)), name)) found.push_back(i);
    if (found.empty()) found = ProgramsThrough(name);
    *several = false;
    for (const int each : found)
        if (SamePathText(TabAt(each).path, LastBuild().source)) return each;
    *several = found.size() > 1;
    return found.size() == 1 ? found.front() : -1;
}

std::wstring BuildSourceMeant() {
    std::wstring source = BuildSourceNow();
    if (IsAtHand() || !IsIncludeFile(source)) return source;
    bool several = false;
    const int program = TabOfProgramWith(source, &several);
    return program >= 0 ? TabAt(program).path : source;
}

std::uint32_t CompilerNow() {
    return IsAtHand() ? g_buildProject->compiler : static_cast<std::uint32_t>(g_settings.activeCompiler);
}

bool BuildChooseCompilerOfProject(std::uint32_t id) {
    if (!IsAtHand()) return false;
    g_buildProject->compiler = id;
    g_events.projectChanged();
    g_events.statusText(TextWith(L"{1} builds {2} until it is closed; the project file stays as it is",
                                 {CompilerName(id), g_buildProject->name})
                            .c_str());
    return true;
}

ProgramStart ProgramStartOfProject(const BuildProject& project) {
    return {project.arguments.value_or(g_settings.programArguments), project.folder.value_or(g_settings.programFolder)};
}

ProgramStart ProgramStartOf(std::wstring_view program) {
    if (g_buildProject && !g_buildProject->source.empty()) {
        wchar_t output[kPathCapacity] = {};
        CompilerMakeOutputPath(g_buildProject->source.c_str(), output, kPathCapacity);
        if (SamePathText(output, program)) return ProgramStartOfProject(*g_buildProject);
    }
    return {g_settings.programArguments, g_settings.programFolder};
}

void BuildSetStartOfProject(const ProgramStart& start) {
    if (!g_buildProject) return;
    g_buildProject->arguments = start.arguments;
    g_buildProject->folder = start.folder;
}
