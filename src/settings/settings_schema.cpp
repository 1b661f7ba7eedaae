// The rows of the table of settings, and the rules on it. Pure: they work on the record that is passed in.
#include "settings/settings_schema.h"

#include "base/path.h"
#include "settings/compilers.h"

#include <array>
#include <cwchar>
#include <string>
#include <vector>

namespace {

using enum SettingType;
using enum SettingGroup;

constexpr wchar_t kOpenAiUrl[] = L"https://api.openai.com/v1/chat/completions";
constexpr wchar_t kLmStudioUrl[] = L"http://localhost:1234/v1/chat/completions";

// A row with effects (SettingEffect bits).
constexpr SettingRow Affects(unsigned effects, SettingRow row) {
    row.effects = static_cast<std::uint16_t>(effects);
    return row;
}

// --- The sections of the five compilers: the same seven keys, with different defaults.
constexpr std::size_t kCompilerRows = 7;

constexpr std::array<SettingRow, kCompilerRows> CompilerSection(std::uint32_t id) {
    const CompilerProfile& compiler = g_compilers[id];
    const wchar_t* const section = compiler.section;
    const std::size_t base = offsetof(Settings, compilers) + id * sizeof(CompilerSettings);
    const auto text = [=](const wchar_t* key, std::size_t offset, std::size_t capacity, const wchar_t* value,
                          std::uint8_t flags = 0) {
        return SettingRow{.group = Compilers,
                          .section = section,
                          .key = key,
                          .type = Text,
                          .offset = base + offset,
                          .capacity = capacity,
                          .text = value,
                          .flags = flags};
    };
    return {
        Affects(kEffectCompiler,
                text(L"Path", offsetof(CompilerSettings, path), kPathCapacity, L"", kSettingExeRelative)),
        text(L"Flags", offsetof(CompilerSettings, flags), compiler.flagsCapacity, compiler.defaultFlags),
        text(L"IncludePath", offsetof(CompilerSettings, includePath), kPathCapacity, L""),
        SettingRow{.group = Compilers,
                   .section = section,
                   .key = L"RegisterExtension",
                   .type = Bool,
                   .offset = base + offsetof(CompilerSettings, registerExtension),
                   .effects = kEffectShell},
        text(L"AsmFlag", offsetof(CompilerSettings, asmFlag), 64, compiler.asmFlag),
        text(L"SyntaxFlags", offsetof(CompilerSettings, syntaxFlags), 512, compiler.defaultSyntaxFlags),
        text(L"Description", offsetof(CompilerSettings, description), 2048, L"",
             static_cast<std::uint8_t>(compiler.descriptionLast ? kSettingLateSave : 0)),
    };
}

// --- All other sections.
struct Place {
    SettingGroup group;
    const wchar_t* section;
};
constexpr Place kEditor{Preferences, L"Editor"};
constexpr Place kSideBar{Preferences, L"AI"};
constexpr Place kProject{Preferences, L"Project"};
constexpr Place kColors{Preferences, L"Colors"};
constexpr Place kBuild{Preferences, L"Build"};
constexpr Place kDebug{Preferences, L"Debug"};
constexpr Place kAi{Assistant, L"AI"};
constexpr Place kRecent{Recent, L"MRU"};
constexpr Place kWindow{Window, L"Window"};
constexpr Place kClosing{Window, L"Editor"};

constexpr SettingRow TextRow(Place place, const wchar_t* key, std::size_t offset, std::size_t capacity,
                             const wchar_t* value, std::uint8_t flags = 0) {
    return {.group = place.group,
            .section = place.section,
            .key = key,
            .type = Text,
            .offset = offset,
            .capacity = capacity,
            .text = value,
            .flags = flags};
}

constexpr SettingRow BoolRow(Place place, const wchar_t* key, std::size_t offset, std::int32_t value,
                             std::uint8_t flags = 0) {
    return {.group = place.group,
            .section = place.section,
            .key = key,
            .type = Bool,
            .offset = offset,
            .number = value,
            .flags = flags};
}

constexpr SettingRow IntRow(Place place, const wchar_t* key, std::size_t offset, std::int32_t value,
                            SettingLimits limits = {}, std::uint8_t flags = 0) {
    return {.group = place.group,
            .section = place.section,
            .key = key,
            .type = Int,
            .offset = offset,
            .number = value,
            .limits = limits,
            .flags = flags};
}

constexpr SettingRow ListRow(Place place, const wchar_t* key, std::size_t offset, std::size_t countOffset,
                             std::int32_t rows, std::size_t rowCapacity) {
    return {.group = place.group,
            .section = place.section,
            .key = key,
            .type = List,
            .offset = offset,
            .capacity = rowCapacity,
            .countOffset = countOffset,
            .rows = rows,
            .rowCapacity = rowCapacity};
}

constexpr SettingRow ColorRow(const wchar_t* key, std::size_t index) {
    return Affects(kEffectEditors, IntRow(kColors, key, offsetof(Settings, colors) + index * sizeof(std::int32_t), 0,
                                          {}, kSettingLoadOnly));
}

constexpr SettingLimits Within(std::int32_t low, std::int32_t high) { return {low, high, low, high}; }
constexpr SettingLimits Else(std::int32_t low, std::int32_t high, std::int32_t other) {
    return {low, high, other, other};
}
constexpr SettingLimits kSearchHistoryLimits = {.high = kSearchHistoryCapacity, .above = kSearchHistoryCapacity};
constexpr SettingLimits kFilesSearchLimits = {.high = kFilesSearchCapacity, .above = kFilesSearchCapacity};

#define FIELD(name) offsetof(Settings, name)
constexpr SettingRow kOtherRows[] = {
    TextRow(kEditor, L"IncludePath", FIELD(includePath), kPathCapacity, L""),
    Affects(kEffectEditors, TextRow(kEditor, L"Font", FIELD(fontName), 64, L"Segoe UI")),
    Affects(kEffectEditors, IntRow(kEditor, L"FontSize", FIELD(fontSize), 12, Within(6, 72), kSettingLateClamp)),
    Affects(kEffectView, BoolRow(kEditor, L"ShowWhitespace", FIELD(showWhitespace), 0)),
    Affects(kEffectView, BoolRow(kEditor, L"WordWrap", FIELD(wordWrap), 0)),
    Affects(kEffectView, IntRow(kEditor, L"EditorZoom", FIELD(editorZoom), 0)),
    Affects(kEffectEditors | kEffectFrame,
            IntRow(kEditor, L"EditorStylePreset", FIELD(editorStylePreset), 0, Else(0, 5, 0))),
    Affects(kEffectCompiler, IntRow(kEditor, L"ActiveCompiler", FIELD(activeCompiler), kDefaultCompiler,
                                    Else(0, kCompilerCount - 1, kDefaultCompiler))),
    Affects(kEffectEditors | kEffectFrame, IntRow(kEditor, L"Theme", FIELD(theme), 0)),
    Affects(kEffectView, IntRow(kEditor, L"TabWidth", FIELD(tabWidth), 4)),
    Affects(kEffectView, BoolRow(kEditor, L"UseTabs", FIELD(useTabs), 0)),
    Affects(kEffectView, BoolRow(kEditor, L"ShowLineNumbers", FIELD(showLineNumbers), 1)),
    Affects(kEffectView, IntRow(kEditor, L"EdgeColumn", FIELD(edgeColumn), 100)),
    Affects(kEffectLayout, BoolRow(kEditor, L"ShowToolbar", FIELD(showToolbar), 1)),
    Affects(kEffectLayout, BoolRow(kEditor, L"ShowStatusbar", FIELD(showStatusbar), 1)),
    Affects(kEffectLayout, BoolRow(kSideBar, L"ShowAISidebar", FIELD(showAiSidebar), 0)),
    Affects(kEffectLayout, IntRow(kSideBar, L"AISidebarWidth", FIELD(aiSidebarWidth), 300, Within(150, 600))),
    Affects(kEffectProject, TextRow(kProject, L"Root", FIELD(projectRoot), kPathCapacity, L"")),
    TextRow(kProject, L"File", FIELD(projectFile), kPathCapacity, L"", kSettingUnlessEmpty),
    Affects(kEffectLayout, BoolRow(kProject, L"ShowProjectTree", FIELD(showProjectTree), 0)),
    Affects(kEffectLayout, BoolRow(kProject, L"ShowOutline", FIELD(showOutline), 0)),
    Affects(kEffectLayout, IntRow(kProject, L"ProjectTreeWidth", FIELD(projectTreeWidth), 200, Within(100, 200))),
    Affects(kEffectLayout, IntRow(kProject, L"ProjectTreeExtra", FIELD(projectTreeExtra), 0, Within(0, 600))),
    Affects(kEffectProject, BoolRow(kProject, L"TreeSourcesOnly", FIELD(treeSourcesOnly), 1)),
    Affects(kEffectProject, BoolRow(kProject, L"TreeHidden", FIELD(treeHidden), 0)),
    Affects(kEffectProject, BoolRow(kProject, L"TreeBinaries", FIELD(treeBinaries), 0)),
    Affects(kEffectProject, BoolRow(kProject, L"TreeGitIgnore", FIELD(treeGitIgnore), 0)),
    Affects(kEffectProject, BoolRow(kProject, L"TreeFollowsTab", FIELD(treeFollowsTab), 0)),
    TextRow(kEditor, L"Language", FIELD(language), 64, L"English"),
    Affects(kEffectFrame, TextRow(kEditor, L"OutputFont", FIELD(outputFont), 64, L"Consolas")),
    Affects(kEffectFrame, IntRow(kEditor, L"OutputFontSize", FIELD(outputFontSize), 9, Within(4, 72))),
    Affects(kEffectFrame, BoolRow(kEditor, L"ReadableOutput", FIELD(readableOutput), 0)),
    Affects(kEffectView, BoolRow(kEditor, L"ShowErrorTexts", FIELD(showErrorTexts), 0)),
    BoolRow(kEditor, L"RestoreLastSession", FIELD(restoreLastSession), 1),
    BoolRow(kEditor, L"BuildOnSave", FIELD(buildOnSave), 0),
    Affects(kEffectTimers, IntRow(kEditor, L"AutoSaveInterval", FIELD(autoSaveInterval), 0)),
    BoolRow(kEditor, L"EnableAutoComplete", FIELD(enableAutoComplete), 1),
    IntRow(kEditor, L"AutoCompleteTrigger", FIELD(autoCompleteTrigger), 2, {1, 10, 2, 10}),
    BoolRow(kEditor, L"AutoUpperKeywords", FIELD(autoUpperKeywords), 1),
    Affects(kEffectView, BoolRow(kEditor, L"ShowIndentGuides", FIELD(showIndentGuides), 0)),
    Affects(kEffectLayout, BoolRow(kEditor, L"ShowTerminal", FIELD(showTerminal), 0)),
    Affects(kEffectView, BoolRow(kEditor, L"ShowEdgeLine", FIELD(showEdgeLine), 0)),
    Affects(kEffectView, BoolRow(kEditor, L"ShowChangeMargin", FIELD(showChangeMargin), 0)),
    Affects(kEffectView, BoolRow(kEditor, L"EnableVirtualSpace", FIELD(enableVirtualSpace), 0)),
    Affects(kEffectLayout, BoolRow(kEditor, L"ShowErrorList", FIELD(showErrorList), 0, kSettingLoadOnly)),
    Affects(kEffectLayout,
            IntRow(kEditor, L"ErrorListHeight", FIELD(errorListHeight), 150, Within(40, 2000), kSettingLoadOnly)),
    ColorRow(L"Keyword", 0),
    ColorRow(L"String", 1),
    ColorRow(L"Comment", 2),
    ColorRow(L"Number", 3),
    ColorRow(L"Operator", 4),
    ColorRow(L"Preproc", 5),
    ColorRow(L"Identifier", 6),
    IntRow(kEditor, L"SearchHistoryCount", FIELD(searchHistoryCount), 0, kSearchHistoryLimits),
    ListRow(kEditor, L"SearchHistory%d", FIELD(searchHistory), FIELD(searchHistoryCount), kSearchHistoryCapacity, 256),
    IntRow(kEditor, L"ReplaceHistoryCount", FIELD(replaceHistoryCount), 0, kSearchHistoryLimits),
    ListRow(kEditor, L"ReplaceHistory%d", FIELD(replaceHistory), FIELD(replaceHistoryCount), kSearchHistoryCapacity,
            256),
    IntRow(kEditor, L"FilesSearchCount", FIELD(filesSearchCount), 0, kFilesSearchLimits),
    ListRow(kEditor, L"FilesSearch%d", FIELD(filesSearches), FIELD(filesSearchCount), kFilesSearchCapacity, 1024),
    Affects(kEffectFrame, IntRow(kEditor, L"NewFileEncoding", FIELD(newFileEncoding), 0, Else(0, 1, 0))),
    BoolRow(kEditor, L"BackupOnSave", FIELD(backupOnSave), 0),
    BoolRow(kEditor, L"BackupSettings", FIELD(backupSettings), 0),
    BoolRow(kEditor, L"ReloadChangedFiles", FIELD(reloadChangedFiles), 0),
    BoolRow(kEditor, L"AutoCloseBlocks", FIELD(autoCloseBlocks), 0),
    BoolRow(kEditor, L"ShowCallTips", FIELD(showCallTips), 1),
    BoolRow(kEditor, L"StepsFollowProgram", FIELD(stepsFollowProgram), 0),
    TextRow(kEditor, L"ProgramArguments", FIELD(programArguments), 1024, L""),
    TextRow(kEditor, L"ProgramFolder", FIELD(programFolder), kPathCapacity, L""),
    IntRow(kBuild, L"Profile", FIELD(profile), 0, Else(0, 2, 0)),
    TextRow(kBuild, L"PreBuildCmd", FIELD(preBuildCmd), 1024, L""),
    TextRow(kBuild, L"PostBuildCmd", FIELD(postBuildCmd), 1024, L""),
    BoolRow(kBuild, L"SaveAllBeforeBuild", FIELD(saveAllBeforeBuild), 1),
    BoolRow(kBuild, L"KeepConsoleOpen", FIELD(keepConsoleOpen), 0),
    TextRow(kDebug, L"Exceptions", FIELD(exceptionRules), 1024, L""),
    IntRow(kDebug, L"View", FIELD(debugView), 0, Else(0, 7, 0)),

    BoolRow(kAi, L"Enabled", FIELD(aiEnabled), 0, kSettingSaveOnly),
    BoolRow(kAi, L"OpenAIEnabled", FIELD(openAIEnabled), 0),
    BoolRow(kAi, L"LMStudioEnabled", FIELD(lmStudioEnabled), 0),
    IntRow(kAi, L"PrimaryAi", FIELD(primaryAi), 0, Else(0, 1, 0)),
    TextRow(kAi, L"OpenAIKey", FIELD(openAIKey), 256, L"", kSettingSecret),
    TextRow(kAi, L"OpenAIUrl", FIELD(openAIUrl), 1024, kOpenAiUrl),
    TextRow(kAi, L"OpenAITranscriptionModel", FIELD(openAITranscriptionModel), 64, L"whisper-1"),
    TextRow(kAi, L"OpenAICodeModel", FIELD(openAICodeModel), 64, L"gpt-4o-mini"),
    TextRow(kAi, L"LMStudioUrl", FIELD(lmStudioUrl), 1024, kLmStudioUrl),
    TextRow(kAi, L"LMStudioKey", FIELD(lmStudioKey), 256, L"", kSettingSecret),
    TextRow(kAi, L"LMStudioModel", FIELD(lmStudioModel), 64, L"local"),
    TextRow(kAi, L"TranscribeTestText", FIELD(transcribeTestText), 1024, L""),
    BoolRow(kAi, L"AppendLastError", FIELD(appendLastError), 1),
    BoolRow(kAi, L"AiStream", FIELD(aiStream), 1),
    IntRow(kAi, L"AiHistoryKB", FIELD(aiHistoryKb), 32, Within(0, 1000)),

    IntRow(kRecent, L"Count", FIELD(mruCount), 0, Within(0, kMruCapacity)),
    ListRow(kRecent, L"File%d", FIELD(mruFiles), FIELD(mruCount), kMruCapacity, kPathCapacity),

    Affects(kEffectLayout, IntRow(kWindow, L"Splitter", FIELD(splitter), 400)),
    Affects(kEffectLayout, IntRow(kWindow, L"StatusHidden", FIELD(statusHidden), 0)),
    IntRow(kWindow, L"PlaceLeft", FIELD(place.left), 0),
    IntRow(kWindow, L"PlaceTop", FIELD(place.top), 0),
    IntRow(kWindow, L"PlaceWidth", FIELD(place.width), 0),
    IntRow(kWindow, L"PlaceHeight", FIELD(place.height), 0),
    BoolRow(kWindow, L"PlaceMax", FIELD(place.maximised), 0),
    IntRow(kWindow, L"PlaceDpi", FIELD(place.dpi), 96, Else(48, 960, 96)),
    IntRow(kWindow, L"SplitterRatio", FIELD(splitterRatio.ratio), 0, Within(0, kFullRatio)),
    IntRow(kWindow, L"SplitterRatioOf", FIELD(splitterRatio.of), 0),
    IntRow(kWindow, L"SidebarRatio", FIELD(sidebarRatio.ratio), 0, Within(0, kFullRatio)),
    IntRow(kWindow, L"SidebarRatioOf", FIELD(sidebarRatio.of), 0),
    Affects(kEffectLayout, IntRow(kWindow, L"DebugPaneWidth", FIELD(debugPaneWidth), 0, Within(0, 4000))),
    Affects(kEffectLayout, IntRow(kWindow, L"ResultsWidth", FIELD(resultsWidth), 0, Within(0, 4000))),
    Affects(kEffectLayout, IntRow(kWindow, L"OutlineHeight", FIELD(outlineHeight), 0, Within(0, 4000))),
    IntRow(kWindow, L"ErrorListSize", FIELD(errorListSize), 0, Within(0, 2000)),
    IntRow(kWindow, L"Panes", FIELD(panesShown), 1),
    Affects(kEffectTimers, BoolRow(kClosing, L"AutoSaveEnabled", FIELD(autoSaveEnabled), 1)),
};
#undef FIELD

constexpr std::size_t kRowCount = kCompilerCount * kCompilerRows + std::size(kOtherRows);

constexpr std::array<SettingRow, kRowCount> AllRows() {
    std::array<SettingRow, kRowCount> rows = {};
    std::size_t next = 0;
    for (const std::uint32_t id : kCompilerSectionOrder)
        for (const SettingRow& row : CompilerSection(id)) rows[next++] = row;
    for (const SettingRow& row : kOtherRows) rows[next++] = row;
    return rows;
}

constexpr std::array<SettingRow, kRowCount> kRows = AllRows();

void ApplyDefault(Settings& settings, const SettingRow& row) {
    switch (row.type) {
        case Text: SafeCopyW(SettingText(settings, row), row.capacity, row.text); break;
        case Bool:
        case Int: SettingNumber(settings, row.offset) = row.number; break;
        case List: break;  // the default of its count is 0
    }
}

}  // namespace

std::span<const SettingRow> SettingRows() { return kRows; }

std::int32_t ApplyLimits(const SettingLimits& limits, std::int32_t value) {
    if (value < limits.low) return limits.below;
    return value > limits.high ? limits.above : value;
}

std::int32_t& SettingNumber(Settings& settings, std::size_t offset) {
    return *reinterpret_cast<std::int32_t*>(reinterpret_cast<char*>(&settings) + offset);
}

std::int32_t SettingNumber(const Settings& settings, std::size_t offset) {
    return *reinterpret_cast<const std::int32_t*>(reinterpret_cast<const char*>(&settings) + offset);
}

wchar_t* SettingText(Settings& settings, const SettingRow& row, int index) {
    return reinterpret_cast<wchar_t*>(reinterpret_cast<char*>(&settings) + row.offset) +
           static_cast<std::size_t>(index) * row.rowCapacity;
}

const wchar_t* SettingText(const Settings& settings, const SettingRow& row, int index) {
    return reinterpret_cast<const wchar_t*>(reinterpret_cast<const char*>(&settings) + row.offset) +
           static_cast<std::size_t>(index) * row.rowCapacity;
}

void SettingsApplyDefaults(Settings& settings) {
    for (const SettingRow& row : kRows) ApplyDefault(settings, row);
    FillEmptyDescriptions(settings);
}

void SettingsDefaults(Settings& settings) {
    settings = {};
    SettingsApplyDefaults(settings);
    SafeCopyW(settings.fontName, L"Consolas");
}

void SettingsReset(Settings& settings) {
    settings = {};
    settings.fontSize = 11;
    settings.tabWidth = 4;
    settings.theme = 0;
    settings.aiSidebarWidth = 300;
    settings.showToolbar = 1;
    settings.showStatusbar = 1;
    settings.showLineNumbers = 1;
    settings.useTabs = 1;
    settings.enableAutoComplete = 1;
    settings.autoUpperKeywords = 1;
    settings.saveAllBeforeBuild = 1;
    SafeCopyW(settings.fontName, L"Consolas");
    SafeCopyW(settings.outputFont, L"Consolas");
    settings.outputFontSize = 10;
    // The texts of the assistant that have a default are its endpoints and models.
    for (const SettingRow& row : kRows)
        if (row.group == Assistant && row.type == Text) ApplyDefault(settings, row);
}

void FillEmptyDescriptions(Settings& settings) {
    for (std::uint32_t id = 0; id < kCompilerCount; ++id)
        if (settings.compilers[id].description[0] == L'\0')
            SafeCopyW(settings.compilers[id].description, g_compilers[id].description);
}

void UpdateAssistantEnabled(Settings& settings) {
    settings.aiEnabled = settings.openAIEnabled != 0 || settings.lmStudioEnabled != 0 ? 1 : 0;
}

void CheckAssistantKeys(Settings& settings) {
    const auto dropShort = [](wchar_t* key, std::size_t shortest, std::int32_t& enabled) {
        const std::size_t length = std::wcslen(key);
        if (length > 0 && length < shortest) {
            key[0] = L'\0';
            enabled = 0;
        }
    };
    dropShort(settings.openAIKey, 10, settings.openAIEnabled);
    dropShort(settings.lmStudioKey, 3, settings.lmStudioEnabled);
    UpdateAssistantEnabled(settings);
}

void ResolveAgainstFolder(const wchar_t* folder, const wchar_t* in, wchar_t* out, std::size_t capacity) {
    if (in[0] == L'\0' || PathIsAbsolute(in))
        SafeCopyW(out, capacity, in);
    else
        PathJoin(folder, in, out, capacity);
}

void MakeFolderRelative(const wchar_t* folder, const wchar_t* in, wchar_t* out, std::size_t capacity) {
    std::wstring_view prefix = folder;
    while (prefix.ends_with(L'\\')) prefix.remove_suffix(1);
    const std::wstring_view path = in;
    if (prefix.empty() || path.size() < prefix.size() || !PathEqualsIgnoreCase(path.substr(0, prefix.size()), prefix) ||
        (path.size() > prefix.size() && path[prefix.size()] != L'\\')) {
        SafeCopyW(out, capacity, path);
        return;
    }
    const std::wstring_view rest = path.substr(prefix.size());
    SafeCopyW(out, capacity, rest.starts_with(L'\\') ? rest.substr(1) : rest);
}
