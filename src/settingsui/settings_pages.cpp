#include "settingsui/settings_pages.h"

#include "base/texts.h"
#include "settings/compilers.h"
#include "settingsui/settings_words.h"
#include "ui/theme_table.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace {

using enum SettingControl;

constexpr std::size_t kNone = static_cast<std::size_t>(-1);  // no setting

// A line of a page. `at` is the offset of the field in Settings, or in CompilerSettings on the pages of compilers.
struct Line {
    std::size_t at;
    SettingControl control;
    const wchar_t* label;
    const wchar_t* help = L"";
    const wchar_t* heading = nullptr;
    std::int32_t low = 0, high = 0;
    std::span<const wchar_t* const> choices = {};
    std::size_t beyond = kNone;
};

constexpr Line Numbered(std::size_t at, const wchar_t* label, std::int32_t low, std::int32_t high,
                        const wchar_t* help = L"", const wchar_t* heading = nullptr) {
    return {.at = at, .control = Number, .label = label, .help = help, .heading = heading, .low = low, .high = high};
}

constexpr const wchar_t* kThemes[] = {L"Light", L"Dark"};
constexpr const wchar_t* kProfiles[] = {L"Debug", L"Release", L"Fast"};
constexpr const wchar_t* kNewEncodings[] = {L"ANSI", L"UTF-8"};
constexpr const wchar_t* kServices[] = {L"OpenAI", L"LM-Studio"};

template <typename Row>
std::vector<const wchar_t*> NamesOf(std::span<const Row> rows) {
    std::vector<const wchar_t*> names;
    for (const Row& row : rows) names.push_back(row.name);
    return names;
}

std::span<const wchar_t* const> StyleNames() {
    static const std::vector<const wchar_t*> names = NamesOf(EditorStyles());
    return names;
}

std::span<const wchar_t* const> CompilerNames() {
    static const std::vector<const wchar_t*> names = NamesOf(g_profiles);
    return names;
}

#define FIELD(name) offsetof(Settings, name)
constexpr std::size_t ColourAt(std::size_t index) { return FIELD(colors) + index * sizeof(std::int32_t); }

constexpr Line kEditorLines[] = {
    Numbered(FIELD(tabWidth), L"Tab width", 1, 32, L"Columns from one tab stop to the next.", L"Typing"),
    {FIELD(useTabs), Check, L"Indent with tab characters", L"Otherwise with blanks."},
    {FIELD(autoUpperKeywords), Check, L"Write BASIC keywords in capitals", L"While typing, and in the formatter."},
    {FIELD(autoCloseBlocks), Check, L"Close a block when it is opened",
     L"Return behind IF ... THEN, FOR, SUB and others adds END IF, NEXT, END SUB below."},
    {FIELD(showCallTips), Check, L"Show the parameters of what is called",
     L"After ( and , in a tip at the call; Ctrl+Shift+Space shows it at any time."},
    {FIELD(enableAutoComplete), Check, L"Complete words while typing",
     L"A list of names, keywords and snippets. Ctrl+Space shows it at any time."},
    Numbered(FIELD(autoCompleteTrigger), L"Letters needed", 1, 10, L"Of a word, before the list comes up."),
    {FIELD(enableVirtualSpace), Check, L"Let the caret go beyond the end of a line"},
    {FIELD(wordWrap), Check, L"Wrap long lines", L"", L"View"},
    {FIELD(showWhitespace), Check, L"Show white space"},
    {FIELD(showLineNumbers), Check, L"Show line numbers"},
    {FIELD(showIndentGuides), Check, L"Show indentation guides"},
    {FIELD(showEdgeLine), Check, L"Show a line at column 80"},
    {FIELD(showChangeMargin), Check, L"Mark changed lines in the margin"},
    {FIELD(showErrorTexts), Check, L"Show errors and warnings behind their lines",
     L"Of the last build. The mouse over a marked place and the status bar tell them at any time."},
    Numbered(FIELD(editorZoom), L"Zoom", -10, 60,
             L"Points added to the size of the font. Ctrl++ and Ctrl+- change it, too."),
};

constexpr Line kColourLines[] = {
    {ColourAt(0), Colour, L"Keywords", L"", L"Colours of your own"},
    {ColourAt(1), Colour, L"Strings"},
    {ColourAt(2), Colour, L"Comments"},
    {ColourAt(3), Colour, L"Numbers"},
    {ColourAt(4), Colour, L"Operators"},
    {ColourAt(5), Colour, L"Preprocessor"},
    {ColourAt(6), Colour, L"Identifiers",
     L"As #RRGGBB; empty is the style's own colour. The colours last until the editor closes: the settings file does "
     L"not "
     L"keep them."},
};

constexpr Line kWindowLines[] = {
    {FIELD(outputFont), Font, L"Output font", L"Of the output, the machine code and the terminal line.", L"Panes"},
    Numbered(FIELD(outputFontSize), L"Output font size", 4, 72, L"In points."),
    {FIELD(readableOutput), Check, L"Readable colours in the output",
     L"Darker red and yellow for errors and warnings. With the dark theme or a high contrast of Windows always."},
    {FIELD(showToolbar), Check, L"Show the toolbar"},
    {FIELD(showStatusbar), Check, L"Show the status bar"},
    {FIELD(showTerminal), Check, L"Show the terminal line"},
    {FIELD(showErrorList), Check, L"Show the error list",
     L"Until the editor closes: the settings file does not keep it."},
    Numbered(FIELD(errorListHeight), L"Height of the error list", 40, 2000,
             L"In pixels at 100 %. Until the editor closes: the settings file does not keep it."),
};

constexpr Line kBuildLines[] = {
    {.at = FIELD(profile),
     .control = Choice,
     .label = L"Build profile",
     .help = L"Debug adds the compiler's debug switch, Release -O2, Fast -O0. A syntax check takes none of them.",
     .choices = kProfiles},
    {FIELD(preBuildCmd), Command, L"Before a build",
     L"A command line that runs first, for at most 30 seconds. What comes of it does not stop the build.", L"Commands"},
    {FIELD(postBuildCmd), Command, L"After a build", L"A command line that runs when the build has succeeded."},
    {FIELD(saveAllBeforeBuild), Check, L"Save all modified documents before a build",
     L"Otherwise only the one that is built.", L"Saving"},
    {FIELD(buildOnSave), Check, L"Build after a document was saved with Ctrl+S"},
    {FIELD(keepConsoleOpen), Check, L"Keep the console open when the program ends",
     L"After Build & Run of a console program, until a key is pressed.", L"Running"},
};

constexpr Line kDebugLines[] = {
    {FIELD(stepsFollowProgram), Check, L"Steps follow the program",
     L"Through every turn of a loop, into calls and out of them. Otherwise a step goes to the next statement by "
     L"address.",
     L"Stepping"},
    {FIELD(exceptionRules), Exceptions, L"Exceptions",
     L"Which of them are passed to the program's own handlers, and which stop it.", L"Exceptions"},
    {FIELD(programArguments), Command, L"Arguments",
     L"Of the program that is debugged, run, or run in the output pane.", L"Program"},
    {FIELD(programFolder), Folder, L"Folder", L"In which the program starts; empty is its own."},
};

constexpr Line kFileLines[] = {
    {.at = FIELD(newFileEncoding),
     .control = Choice,
     .label = L"Encoding of new files",
     .help = L"Of a document without a file, and of a file saved under another name. The compilers read ANSI. "
             L"The status bar changes it for one document.",
     .heading = L"New files",
     .choices = kNewEncodings},
    {FIELD(backupOnSave), Check, L"Keep a copy of a file before it is overwritten",
     L"Beside it, with \".bak\" at the end.", L"Backup"},
    {FIELD(backupSettings), Check, L"Keep a copy of the settings file", L"\"Editor.ini.bak\", from before each save."},
    {FIELD(reloadChangedFiles), Check, L"Reload files that other programs change without asking",
     L"Only documents without unsaved edits; Undo takes it back.", L"Other programs"},
    Numbered(FIELD(autoSaveInterval), L"Save documents every", 0, 1440,
             L"Minutes. Modified documents that have a file are saved; 0 is never.", L"Recovery"),
    {FIELD(autoSaveEnabled), Check, L"Keep the session every five minutes",
     L"Open files, carets and bookmarks; it is offered at the next start."},
    {FIELD(restoreLastSession), Check, L"Keep the workspace", L"It is loaded at the start and saved at the end."},
    {kNone, SettingsFile, L"Settings file", L"Sessions and the workspace are kept in the same folder.", L"Place"},
};

constexpr Line kAiLines[] = {
    {.at = FIELD(primaryAi),
     .control = Choice,
     .label = L"Preferred service",
     .help = L"The one that is asked where a command names none.",
     .heading = L"Assistant",
     .choices = kServices},
    {FIELD(appendLastError), Check, L"Send the last error with a question"},
    {FIELD(aiStream), Check, L"Show replies as they come",
     L"The service is asked to send them piece by piece. Switch it off for a service that does not know this.",
     L"Chat"},
    Numbered(FIELD(aiHistoryKb), L"Earlier messages", 0, 1000,
             L"The newest ones that go with a new one, in KB. 0 sends each message of the chat alone."),
    {FIELD(showAiSidebar), Check, L"Show the side bar", L"", L"Side bar"},
    Numbered(FIELD(aiSidebarWidth), L"Width of the side bar", 150, 600, L"In pixels at 100 %."),
};

constexpr Line kOpenAiLines[] = {
    {FIELD(openAIEnabled), Check, L"Use OpenAI"},
    {FIELD(openAIUrl), Url, L"Address", L"Of chat completions, with http:// or https:// in front.", L"Connection"},
    {FIELD(openAIKey), Secret, L"Key", L"On the disk only this Windows account can read it."},
    {kNone, ConnectionTest, L"Test Connection",
     L"Asks the service whether it answers, with the address and the key above."},
    {FIELD(openAICodeModel), Model, L"Model",
     L"Fetch asks the service which models it has, with the address and the key above.", L"Models"},
    {FIELD(openAITranscriptionModel), Model, L"Transcription model", L"For what is spoken."},
};

constexpr Line kLmStudioLines[] = {
    {FIELD(lmStudioEnabled), Check, L"Use LM-Studio"},
    {FIELD(lmStudioUrl), Url, L"Address", L"Of chat completions, with http:// or https:// in front.", L"Connection"},
    {FIELD(lmStudioKey), Secret, L"Key",
     L"Most local servers need none. On the disk only this Windows account can read it."},
    {kNone, ConnectionTest, L"Test Connection",
     L"Asks the service whether it answers, with the address and the key above."},
    {FIELD(lmStudioModel), Model, L"Model",
     L"Fetch asks the service which models it has, with the address and the key above.", L"Models"},
};

constexpr Line kProjectLines[] = {
    {FIELD(projectRoot), Folder, L"Project folder", L"The folder that the project tree shows."},
    {FIELD(showProjectTree), Check, L"Show the project tree"},
    {FIELD(showOutline), Check, L"Show the outline", L"The symbols of the document, below the project tree."},
    {.at = FIELD(projectTreeWidth),
     .control = Number,
     .label = L"Width of the tree",
     .help = L"In pixels at 100 %. The bar beside the tree changes it, too.",
     .low = 100,
     .high = 800,
     .beyond = FIELD(projectTreeExtra)},
    {FIELD(treeSourcesOnly), Check, L"Only source files", L"", L"What the tree shows"},
    {FIELD(treeHidden), Check, L"Hidden files and folders", L"Also those whose names begin with a dot."},
    {FIELD(treeBinaries), Check, L"Programs, libraries, pictures and archives",
     L"When it does not show source files only."},
    {FIELD(treeGitIgnore), Check, L"Leave out what .gitignore names"},
    {FIELD(treeFollowsTab), Check, L"Follow the active tab", L"Opens the folders down to the file that is shown."},
};

constexpr Line kKeyLines[] = {
    {kNone, CopyKeys, L"Copy List",
     L"Copies the lines that are listed, each a command and its keys. The search above finds commands and keys, too."},
    {kNone, Keys, L"Keys",
     L"The keys are fixed. What an editor does with a key is not listed. Ctrl+C copies the chosen lines."},
};

#define OWN(name) offsetof(CompilerSettings, name)
constexpr Line kCompilerLines[] = {
    {OWN(path), File, L"Program", L"The compiler's executable.", L"Compiler"},
    {kNone, CompilerTest, L"Test", L"Starts the compiler and shows its version."},
    {OWN(flags), Command, L"Flags", L"Switches of a build, before those of the profile.", L"Command line"},
    {OWN(includePath), Folder, L"Include folder", L"Given to the compiler when it is not empty."},
    {OWN(asmFlag), Command, L"Listing switch",
     L"{asm} stands for the listing's path; without it the path is added at the end. Empty is the compiler's usual "
     L"switch."},
    {OWN(syntaxFlags), Command, L"Syntax check", L"Switches of a syntax check. Empty are the compiler's usual ones."},
    {kNone, CommandPreview, L"Result", L"For C:\\Sources\\program, with the listing that the ASM pane asks for."},
    {OWN(description), LongText, L"Description",
     L"Told to the assistant when it is asked about a source of this compiler.", L"More"},
    {OWN(registerExtension), Check, L"Offer the editor for this compiler's files",
     L"In the \"Open with\" list of Windows."},
    {kNone, DefaultProgram, L"Default Program", L"Decides whether a double click opens its files here."},
};
#undef OWN

const SettingRow* RowAt(std::size_t offset) {
    const auto rows = SettingRows();
    const auto found = std::ranges::find(rows, offset, &SettingRow::offset);
    return found == rows.end() ? nullptr : &*found;
}

void AddLines(SettingsPage& page, std::span<const Line> lines, std::size_t base = 0) {
    const wchar_t* group = L"";
    for (const Line& line : lines) {
        if (line.heading != nullptr) group = ::Text(line.heading);
        page.items.push_back({.row = line.at == kNone ? nullptr : RowAt(base + line.at),
                              .heading = ::Text(line.heading),
                              .control = line.control,
                              .label = ::Text(line.label),
                              .help = ::Text(line.help),
                              .low = line.low,
                              .high = line.high,
                              .choices = line.choices,
                              .beyond = line.beyond == kNone ? nullptr : RowAt(line.beyond),
                              .group = group,
                              .words = ::Text(WordsOfSetting(line.at, line.control, base != 0))});
    }
}

SettingsPage PageOf(const wchar_t* title, std::span<const Line> lines) {
    SettingsPage page{.title = ::Text(title), .items = {}};
    AddLines(page, lines);
    return page;
}

SettingsPage AppearancePage() {
    const Line looks[] = {
        {.at = FIELD(theme), .control = Choice, .label = L"Theme", .heading = L"Looks", .choices = kThemes},
        {.at = FIELD(editorStylePreset),
         .control = Choice,
         .label = L"Editor style",
         .help = L"Colours of the text and the windows. Its font comes along unless you have chosen another one.",
         .choices = StyleNames()},
        {FIELD(language), Language, L"Language",
         L"Of menus, dialogs and messages, from the next start on. Each language is a file in the folder "
         L"\"languages\"."},
        {.at = FIELD(fontName), .control = Font, .label = L"Font", .heading = L"Editor font"},
        Numbered(FIELD(fontSize), L"Size", 6, 72, L"In points."),
        {kNone, FixedFonts, L"Offer only fonts of fixed pitch"},
        {kNone, FontPreview, L"Preview"},
    };
    SettingsPage page = PageOf(L"Appearance", looks);
    AddLines(page, kColourLines);
    AddLines(page, kWindowLines);
    return page;
}

SettingsPage CompilersPage() {
    const Line lines[] = {
        {.at = FIELD(activeCompiler),
         .control = Choice,
         .label = L"Compiler in use",
         .help = L"The one that a build starts. Opening a file chooses the one that its name asks for.",
         .choices = CompilerNames()},
        {kNone, Detect, L"Auto-Detect", L"Searches for compilers beside the editor and fills in those without a path."},
    };
    return PageOf(L"Compilers", lines);
}

// The program keeps these: lists, places of windows and what is derived.
constexpr std::size_t kOwnFields[] = {
    FIELD(projectFile),      FIELD(replaceHistoryCount),
    FIELD(replaceHistory),   FIELD(searchHistoryCount),
    FIELD(searchHistory),    FIELD(filesSearchCount),
    FIELD(filesSearches),    FIELD(mruCount),
    FIELD(mruFiles),         FIELD(splitter),
    FIELD(debugView),        FIELD(place.left),
    FIELD(place.top),        FIELD(place.width),
    FIELD(place.height),     FIELD(place.maximised),
    FIELD(place.dpi),        FIELD(splitterRatio.ratio),
    FIELD(splitterRatio.of), FIELD(sidebarRatio.ratio),
    FIELD(sidebarRatio.of),  FIELD(statusHidden),
    FIELD(aiEnabled),        FIELD(debugPaneWidth),
    FIELD(resultsWidth),     FIELD(outlineHeight),
    FIELD(errorListSize),    FIELD(panesShown),
};
// Nothing in the program asks for these.
constexpr std::size_t kUnusedFields[] = {
    FIELD(includePath),
    FIELD(edgeColumn),
    FIELD(transcribeTestText),
};

std::vector<SettingsPage> BuildPages() {
    std::vector<SettingsPage> pages;
    pages.push_back(PageOf(L"Editor", kEditorLines));
    pages.push_back(AppearancePage());
    pages.push_back(CompilersPage());
    for (const CompilerProfile& compiler : g_profiles) {
        SettingsPage page{.title = compiler.name, .compiler = static_cast<int>(compiler.id), .items = {}};
        AddLines(page, kCompilerLines, FIELD(compilers) + compiler.id * sizeof(CompilerSettings));
        pages.push_back(std::move(page));
    }
    pages.push_back(PageOf(L"Build", kBuildLines));
    pages.push_back(PageOf(L"Debugging", kDebugLines));
    pages.push_back(PageOf(L"Files and recovery", kFileLines));
    pages.push_back(PageOf(L"AI General", kAiLines));
    pages.push_back(PageOf(L"OAI", kOpenAiLines));
    pages.push_back(PageOf(L"LM-Studio", kLmStudioLines));
    pages.push_back(PageOf(L"Project", kProjectLines));
    pages.push_back(PageOf(L"Keyboard", kKeyLines));
    return pages;
}
#undef FIELD

}  // namespace

const std::vector<SettingsPage>& SettingsPages() {
    static const std::vector<SettingsPage> pages = BuildPages();
    return pages;
}

bool SettingIsKeptByProgram(const SettingRow& row) {
    return std::ranges::find(kOwnFields, row.offset) != std::end(kOwnFields) ||
           std::ranges::find(kUnusedFields, row.offset) != std::end(kUnusedFields);
}
