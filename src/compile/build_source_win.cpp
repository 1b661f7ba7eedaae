#include "compile/build_source.h"

#include "base/events.h"
#include "base/path.h"
#include "base/texts.h"
#include "documents/document_row.h"
#include "output/last_build.h"
#include "scintilla/sci.h"
#include "settings/compiler_table.h"
#include "settings/settings_state.h"

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
    constexpr LRESULT kLookedAt = 4 << 20;  // bytes
    int found = -1;
    *several = false;
    for (int i = 0; i < TabCount(); ++i) {
        const DocumentTab& tab = TabAt(i);
        if (!tab.hasFile || tab.editor == nullptr || IsIncludeFile(tab.path)) continue;
        const LRESULT length = SciSend(tab.editor, SCI_GETLENGTH);
        if (length > kLookedAt) continue;
        const auto* const text = reinterpret_cast<const char*>(SciSend(tab.editor, SCI_GETCHARACTERPOINTER));
        if (!IncludesFile({text, static_cast<std::size_t>(length)}, FileNameOf(includeFile))) continue;
        if (SamePathText(tab.path, LastBuild().source)) {
            *several = false;
            return i;
        }
        *several = found >= 0;
        found = i;
    }
    return *several ? -1 : found;
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
