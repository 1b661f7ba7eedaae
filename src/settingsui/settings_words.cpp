#include "settingsui/settings_words.h"

#include "base/texts.h"

#include <algorithm>
#include <span>

namespace {

struct WordsRow {
    std::size_t field;
    const wchar_t* words;
};

#define FIELD(name) offsetof(Settings, name)
constexpr WordsRow kWords[] = {
    {FIELD(tabWidth), English(L"indentation size spaces")},
    {FIELD(useTabs), English(L"indentation spaces insert soft hard")},
    {FIELD(autoUpperKeywords), English(L"uppercase case automatic")},
    {FIELD(autoCloseBlocks), English(L"automatic auto-close end insert pair")},
    {FIELD(showCallTips), English(L"hint signature arguments tooltip")},
    {FIELD(enableAutoComplete), English(L"autocomplete completion suggestions popup")},
    {FIELD(autoCompleteTrigger), English(L"autocomplete completion characters trigger")},
    {FIELD(enableVirtualSpace), English(L"cursor virtual space")},
    {FIELD(wordWrap), English(L"word soft break")},
    {FIELD(showWhitespace), English(L"whitespace spaces dots invisible")},
    {FIELD(showLineNumbers), English(L"gutter margin")},
    {FIELD(showIndentGuides), English(L"lines vertical")},
    {FIELD(showEdgeLine), English(L"ruler edge margin right vertical")},
    {FIELD(showChangeMargin), English(L"modified bar edited")},
    {FIELD(showErrorTexts), English(L"inline annotations diagnostics squiggles messages")},
    {FIELD(editorZoom), English(L"font size larger smaller scale")},
    {FIELD(theme), English(L"dark light mode night colors")},
    {FIELD(editorStylePreset), English(L"scheme colors preset syntax highlighting")},
    {FIELD(language), English(L"translation locale")},
    {FIELD(fontName), English(L"typeface monospace")},
    {FIELD(fontSize), English(L"font text larger smaller")},
    {FIELD(colors), English(L"color syntax highlighting")},
    {FIELD(outputFont), English(L"console typeface monospace")},
    {FIELD(outputFontSize), English(L"console text larger smaller")},
    {FIELD(readableOutput), English(L"contrast color")},
    {FIELD(showToolbar), English(L"hide buttons icons")},
    {FIELD(showStatusbar), English(L"hide statusbar")},
    {FIELD(showTerminal), English(L"command prompt shell console")},
    {FIELD(showErrorList), English(L"problems messages")},
    {FIELD(profile), English(L"optimize optimization configuration")},
    {FIELD(preBuildCmd), English(L"pre-build event hook script")},
    {FIELD(postBuildCmd), English(L"post-build event hook script")},
    {FIELD(saveAllBeforeBuild), English(L"autosave compile run")},
    {FIELD(buildOnSave), English(L"compile automatic")},
    {FIELD(keepConsoleOpen), English(L"window pause wait stay close terminal exit run output")},
    {FIELD(stepsFollowProgram), English(L"debugger step single F10 F11")},
    {FIELD(exceptionRules), English(L"crash access violation break debugger")},
    {FIELD(programArguments), English(L"command line parameters run")},
    {FIELD(programFolder), English(L"working current directory run")},
    {FIELD(newFileEncoding), English(L"utf8 unicode code page charset default save as")},
    {FIELD(backupOnSave), English(L"backup bak history")},
    {FIELD(backupSettings), English(L"backup bak")},
    {FIELD(reloadChangedFiles), English(L"refresh external modified outside automatic")},
    {FIELD(autoSaveInterval), English(L"autosave auto-save timer")},
    {FIELD(autoSaveEnabled), English(L"autosave auto-save restore startup reopen tabs")},
    {FIELD(restoreLastSession), English(L"restore session startup reopen tabs last")},
    {FIELD(primaryAi), English(L"provider default")},
    {FIELD(aiStream), English(L"streaming")},
    {FIELD(aiHistoryKb), English(L"context memory history conversation")},
    {FIELD(showAiSidebar), English(L"sidebar chat panel")},
    {FIELD(aiSidebarWidth), English(L"sidebar size")},
    {FIELD(openAIUrl), English(L"endpoint server proxy")},
    {FIELD(openAIKey), English(L"api token password secret")},
    {FIELD(openAITranscriptionModel), English(L"voice speech microphone")},
    {FIELD(lmStudioUrl), English(L"endpoint server proxy local")},
    {FIELD(lmStudioKey), English(L"api token password secret")},
    {FIELD(projectRoot), English(L"root directory explorer workspace")},
    {FIELD(showProjectTree), English(L"explorer files sidebar panel")},
    {FIELD(showOutline), English(L"functions procedures list structure")},
    {FIELD(projectTreeWidth), English(L"size explorer")},
    {FIELD(treeSourcesOnly), English(L"filter explorer")},
    {FIELD(treeFollowsTab), English(L"sync select current reveal explorer")},
};
#undef FIELD

#define OWN(name) offsetof(CompilerSettings, name)
constexpr WordsRow kCompilerWords[] = {
    {OWN(path), English(L"exe location directory")},
    {OWN(flags), English(L"options arguments parameters")},
    {OWN(includePath), English(L"directory path headers")},
    {OWN(asmFlag), English(L"assembly asm")},
    {OWN(syntaxFlags), English(L"options check")},
    {OWN(registerExtension), English(L"file association extension explorer register")},
};
#undef OWN

// What shows no setting.
constexpr struct {
    SettingControl control;
    const wchar_t* words;
} kControlWords[] = {
    {SettingControl::FixedFonts, English(L"monospace")},
    {SettingControl::Detect, English(L"find locate automatic path")},
    {SettingControl::DefaultProgram, English(L"file association extension explorer register")},
    {SettingControl::SettingsFile, English(L"ini location directory path config")},
    {SettingControl::Keys, English(L"shortcuts hotkeys bindings accelerators")},
    {SettingControl::CopyKeys, English(L"shortcuts hotkeys bindings accelerators")},
};

}  // namespace

const wchar_t* WordsOfSetting(std::size_t field, SettingControl control, bool ofCompiler) {
    for (const auto& row : kControlWords)
        if (row.control == control) return row.words;
    const auto rows = ofCompiler ? std::span<const WordsRow>{kCompilerWords} : kWords;
    const auto found = std::ranges::find(rows, field, &WordsRow::field);
    return found == rows.end() ? L"" : found->words;
}
