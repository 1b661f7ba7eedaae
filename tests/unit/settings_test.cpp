// Limits, defaults, effects, stored values and paths of the settings.
#include "settings/ini_text.h"
#include "settings/ini_value.h"
#include "settings/run_overrides.h"
#include "settings/secret_text.h"
#include "settings/settings_effects.h"
#include "settings/settings_file.h"
#include "settings/settings_merge.h"
#include "settings/settings_place.h"
#include "settings/settings_schema.h"
#include "support/golden_file.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <memory>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <string_view>

namespace {

using namespace std::string_view_literals;

const SettingRow& Row(std::wstring_view section, std::wstring_view key) {
    for (const SettingRow& row : SettingRows())
        if (section == row.section && key == row.key) return row;
    ADD_FAILURE() << "no such setting";
    return SettingRows().front();
}

// The value that GetPrivateProfileString makes of the text after the "=".
std::wstring AsRead(std::wstring text) {
    while (!text.empty() && (text.back() == L' ' || text.back() == L'\t')) text.pop_back();
    text.erase(0, text.find_first_not_of(L" \t"));
    if (text.size() > 1 && (text.front() == L'"' || text.front() == L'\'') && text.front() == text.back())
        text = text.substr(1, text.size() - 2);
    return text;
}

std::wstring Wide(const std::string& bytes) {
    std::wstring text;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
        text += static_cast<wchar_t>(static_cast<unsigned char>(bytes[i]) |
                                     (static_cast<unsigned>(static_cast<unsigned char>(bytes[i + 1])) << 8U));
    return text;
}

// The stored value of a key in a file's text.
std::wstring StoredIn(const std::wstring& file, const std::wstring& section, const std::wstring& key) {
    const std::size_t start = file.find(L"[" + section + L"]\r\n");
    if (start == std::wstring::npos) return L"(none)";
    const std::wstring body = file.substr(start, file.find(L"\r\n[", start) - start) + L"\r\n";
    const std::size_t line = body.find(L"\r\n" + key + L"=");
    if (line == std::wstring::npos) return L"(none)";
    const std::size_t from = line + key.size() + 3;
    return body.substr(from, body.find(L"\r\n", from) - from);
}

}  // namespace

// One setting for each kind of limit.
TEST(Settings, Limits) {
    struct Case {
        const wchar_t *section, *key;
        std::int32_t stored, used;
    };
    constexpr Case kCases[] = {
        {L"Editor", L"FontSize", 5, 6},
        {L"Editor", L"AutoCompleteTrigger", 0, 2},
        {L"Editor", L"AutoCompleteTrigger", 11, 10},
        {L"Editor", L"ActiveCompiler", 5, 3},
        {L"Editor", L"SearchHistoryCount", -7, -7},
        {L"Project", L"ProjectTreeWidth", 250, 200},
    };
    for (const Case& test : kCases)
        EXPECT_EQ(ApplyLimits(Row(test.section, test.key).limits, test.stored), test.used) << test.key;
}

// A wrong offset or capacity in a row would make its field overlap another.
TEST(Settings, RowsDoNotOverlap) {
    std::string owners(sizeof(Settings), '\0');
    for (const SettingRow& row : SettingRows()) {
        const bool text = row.type == SettingType::Text;
        const std::size_t size = text ? row.capacity * sizeof(wchar_t)
                                 : row.type == SettingType::List
                                     ? static_cast<std::size_t>(row.rows) * row.rowCapacity * sizeof(wchar_t)
                                     : sizeof(std::int32_t);
        ASSERT_LE(row.offset + size, sizeof(Settings)) << row.key;
        for (std::size_t at = row.offset; at < row.offset + size; ++at) {
            ASSERT_EQ(owners[at], '\0') << row.section << " " << row.key;
            owners[at] = 'x';
        }
    }
}

TEST(Settings, EachFieldHasARow) {
    const std::string root = KVX_ROOT_DIR, header = ReadBytes(root + "/src/settings/settings.h"),
                      table = ReadBytes(root + "/src/settings/settings_schema.cpp");
    // The recent sessions are read and written by a list of their own.
    const std::set<std::string> others = {"sessionMruCount", "sessionMruFiles"};
    const std::regex field(R"(^ +(?:std::int32_t|wchar_t|[A-Z]\w+) (\w+)(?:\[.*)?;)");
    std::istringstream lines(header.substr(header.find("struct Settings {")));
    std::smatch found;
    int count = 0;
    for (std::string line; std::getline(lines, line) && line != "};";) {
        if (!std::regex_search(line, found, field) || others.contains(found[1])) continue;
        ++count;
        EXPECT_TRUE(std::regex_search(table, std::regex("\\b" + found[1].str() + "\\b"))) << found[1] << " has no row";
    }
    EXPECT_GT(count, 50);
}

TEST(Settings, StartAndFactoryStateDifferOnPurpose) {
    const auto settings = std::make_unique<Settings>();
    SettingsDefaults(*settings);
    EXPECT_STREQ(settings->fontName, L"Consolas");
    EXPECT_STREQ(Row(L"Editor", L"Font").text, L"Segoe UI");
    EXPECT_EQ(settings->fontSize, 12);
    EXPECT_EQ(settings->activeCompiler, 3);
    EXPECT_EQ(settings->useTabs, 0);
    EXPECT_STREQ(settings->compilers[kCompilerKeldorBasic].flags, L"/L /Q");
    EXPECT_TRUE(std::wstring_view{settings->compilers[kCompilerKvxc64].description}.starts_with(
        L"KVXC64 Compiler - PowerBASIC x64 compiler"));
    EXPECT_STREQ(settings->compilers[kCompilerKvxa32].description, L"");

    SettingsReset(*settings);
    EXPECT_EQ(settings->fontSize, 11);
    EXPECT_EQ(settings->useTabs, 1);
    EXPECT_EQ(settings->outputFontSize, 10);
    EXPECT_EQ(settings->activeCompiler, 0);
    EXPECT_EQ(settings->splitter, 0);
    EXPECT_STREQ(settings->compilers[kCompilerKeldorBasic].flags, L"");
    EXPECT_STREQ(settings->openAICodeModel, L"gpt-4o-mini");
}

TEST(Settings, AServiceWithTooShortAKeyIsSwitchedOff) {
    const auto settings = std::make_unique<Settings>();
    const auto check = [&settings](const wchar_t* openAi, const wchar_t* lmStudio) {
        SafeCopyW(settings->openAIKey, openAi);
        SafeCopyW(settings->lmStudioKey, lmStudio);
        settings->openAIEnabled = settings->lmStudioEnabled = 1;
        CheckAssistantKeys(*settings);
        return settings->openAIEnabled * 100 + settings->lmStudioEnabled * 10 + settings->aiEnabled;
    };
    EXPECT_EQ(check(L"", L""), 111);
    EXPECT_EQ(check(L"0123456789", L"123"), 111);
    EXPECT_EQ(check(L"012345678", L"123"), 11);
    EXPECT_STREQ(settings->openAIKey, L"");
    EXPECT_EQ(check(L"012345678", L"12"), 0);
}

TEST(Settings, StoredValuesComeBackUnchanged) {
    constexpr const wchar_t* kAsTheyAre[] = {L"",           L"plain",       L"-x \"a b\" -y", L"; comment?",
                                             L"\"",         L"a=b",         L"[x]",           L"\"only the first",
                                             L"C:\\a\\n.c", L"tab\tinside", L"\u4E2D\u6587"};
    for (const wchar_t* value : kAsTheyAre) {
        EXPECT_EQ(EncodeIniValue(value), value);
        EXPECT_EQ(DecodeIniValue(AsRead(EncodeIniValue(value))), value);
    }
    const std::wstring changed[] = {
        L" lead", L"trail ",    L"\ttab", L"\"quoted\"", L"'quoted'",      L"\"\"", L" ",       L"a\r\nb",
        L"\n",    L"a\\r\nb\\", L"[ESC]", L"[ESC]a\\nb", L"\x1A\x01 end ", L"x\r",  L"\" \n\"", L"\u3000wide\u00A0"};
    for (const std::wstring& value : changed) {
        const std::wstring stored = EncodeIniValue(value);
        EXPECT_NE(stored, value);
        EXPECT_EQ(stored.find_first_of(L"\r\n"), std::wstring::npos);
        EXPECT_LE(stored.size(), IniValueCapacity(value.size() + 1));
        EXPECT_EQ(DecodeIniValue(AsRead(stored)), value) << stored;
    }
    // In a value written by hand, what is no escape sequence stays as it is.
    EXPECT_EQ(DecodeIniValue(L"[ESC]a\\q\\x1\\xZZ\\"), L"a\\q\\x1\\xZZ\\");
}

TEST(Settings, AreInTheFolderThatTakesThem) {
    // o, s: there are settings in the own, the shared folder; w: the program's folder takes files; m, c: the own folder
    // cannot be made, nothing can be copied.
    const struct {
        std::wstring state, atStart, afterFailure;
    } cases[] = {{L"", L"", L"own"},      {L"o", L"own", L"own"}, {L"s", L"own", L"own"}, {L"sc", L"shared", L"own"},
                 {L"sm", L"shared", L""}, {L"osw", L"", L""},     {L"w", L"", L""}};
    for (const auto& test : cases) {
        const auto has = [&](wchar_t letter) { return test.state.find(letter) != std::wstring::npos; };
        const SettingsFolderSteps steps = {
            .hasSettings = [&](const std::wstring& folder) { return has(folder == L"own" ? L'o' : L's'); },
            .takesFiles = [&](const std::wstring&) { return has(L'w'); },
            .make = [&](const std::wstring&) { return !has(L'm'); },
            .copy = [&](const std::wstring&, const std::wstring&) { return !has(L'c'); }};
        const SettingsFolders folders = {.program = L"program", .own = L"own", .shared = L"shared"};
        EXPECT_EQ(FolderAtStart(folders, steps), test.atStart) << test.state.c_str();
        EXPECT_EQ(FolderAfterFailure(folders, steps, 5), test.afterFailure) << test.state.c_str();
        EXPECT_EQ(FolderAfterFailure(folders, steps, 112), L"") << "a full disk is full elsewhere, too";
    }
    EXPECT_EQ(InstallationFolderName(L"C:\\Tools\\KVX\\"), InstallationFolderName(L"c:\\TOOLS\\KVX"));
    EXPECT_NE(InstallationFolderName(L"C:\\Tools\\KVX"), InstallationFolderName(L"D:\\Tools\\KVX"));
}

TEST(Settings, LinesOfASection) {
    constexpr std::wstring_view kLines =
        L"; FontSize=1\0FontSize=2\0fontsize=3\0 Wide =  a = b \t\0Font=\"x\"\0Half=y'\0Empty=\0Word\0\u00C9t\u00E9=4\0Last=-5"sv;
    struct Case {
        const wchar_t* key;
        IniLineKind kind;
        const wchar_t* value;
    };
    constexpr Case kCases[] = {
        {L"FONTSIZE", IniLineKind::Plain, L"2"},      {L"Wide", IniLineKind::Plain, L"a = b"},
        {L"Font", IniLineKind::Quoted, L"\"x\""},     {L"Half", IniLineKind::Quoted, L"y'"},
        {L"Empty", IniLineKind::Plain, L""},          {L"Word", IniLineKind::Missing, L""},
        {L"\u00E9T\u00C9", IniLineKind::Plain, L"4"}, {L"Last", IniLineKind::Plain, L"-5"},
        {L"None", IniLineKind::Missing, L""},
    };
    for (const Case& test : kCases) {
        const IniLine line = FindIniLine(kLines, test.key);
        EXPECT_EQ(line.kind, test.kind) << test.key;
        EXPECT_EQ(line.value, test.value) << test.key;
    }
    int number = 0;
    EXPECT_TRUE(ParsePlainNumber(L"-999999999", &number) && number == -999999999);
    EXPECT_TRUE(ParsePlainNumber(L"0", &number) && number == 0);
    for (const wchar_t* text : {L"", L"-", L"010", L"0x10", L"1 2", L"+1", L"4294967295"})
        EXPECT_FALSE(ParsePlainNumber(text, &number)) << text;
}

TEST(Settings, FileTextKeepsSectionsTogether) {
    IniText ini;
    ini.Add(L"A", L"x", L"1");
    ini.AddNumber(L"B", L"y", -5);
    ini.AddText(L"A", L"z", L" \u00E9");
    EXPECT_EQ(Wide(ini.Bytes()), L"\uFEFF[A]\r\nx=1\r\nz=\" \u00E9\"\r\n[B]\r\ny=-5\r\n");
}

TEST(Settings, PathsAgainstTheProgramsFolder) {
    struct Case {
        const wchar_t *absolute, *stored;
    };
    constexpr Case kBothWays[] = {
        {L"C:\\kvx\\K\\k.exe", L"K\\k.exe"},
        {L"D:\\k.exe", L"D:\\k.exe"},
        {L"", L""},
        {L"\\\\srv\\k.exe", L"\\\\srv\\k.exe"},
        {L"C:\\kvxtra\\k.exe", L"C:\\kvxtra\\k.exe"},
        {L"C:\\kv", L"C:\\kv"},
    };
    wchar_t path[64];
    for (const Case& test : kBothWays) {
        SafeCopyW(path, test.absolute);
        MakeFolderRelative(L"C:\\kvx\\", path, path, 64);
        EXPECT_STREQ(path, test.stored);
        ResolveAgainstFolder(L"C:\\kvx\\", path, path, 64);
        EXPECT_STREQ(path, test.absolute);
    }
    MakeFolderRelative(L"C:\\kvx\\", L"c:\\KVX\\k.exe", path, 64);
    EXPECT_STREQ(path, L"k.exe");
    ResolveAgainstFolder(L"C:\\kvx\\", L"\\k.exe", path, 64);
    EXPECT_STREQ(path, L"C:\\kvx\\\\k.exe");
}

TEST(SettingsText, IsComposedOfEveryKindOfValue) {
    const auto settings = std::make_unique<Settings>();
    SettingsDefaults(*settings);
    SafeCopyW(settings->compilers[kCompilerKvxa64].path, L"C:\\kvx\\K\\k.exe");
    SafeCopyW(settings->openAIKey, L"0123456789");
    SafeCopyW(settings->lmStudioKey, L"whole key of another account");
    settings->mruCount = 2;
    SafeCopyW(settings->mruFiles[1], L" b\r\n");
    settings->sessionMruCount = 1;
    SafeCopyW(settings->sessionMruFiles[0], L"s");

    StoredKeys keys;
    keys[0] = {.row = &Row(L"AI", L"LMStudioKey"),
               .held = settings->lmStudioKey,
               .stored = L"whole key of another account, longer than the record holds"};
    const auto protect = [](const SettingRow&, const wchar_t* key) { return L"#" + std::wstring(key); };
    const std::wstring file = Wide(ComposeSettings(
        *settings, keys,
        {.protect = protect, .programFolder = L"C:\\kvx\\", .windowPlace = {.known = true, .left = -3, .width = 9}}));
    EXPECT_EQ(StoredIn(file, L"KVXA64", L"Path"), L"K\\k.exe");
    EXPECT_EQ(StoredIn(file, L"AI", L"OpenAIKey"), L"#0123456789");
    EXPECT_EQ(StoredIn(file, L"AI", L"LMStudioKey"), keys[0].stored) << "not the part that the record holds";
    EXPECT_EQ(StoredIn(file, L"Window", L"Left"), L"-3");
    EXPECT_EQ(StoredIn(file, L"Session", L"MRU0"), L"s");
    EXPECT_EQ(DecodeIniValue(AsRead(StoredIn(file, L"MRU", L"File1"))), L" b\r\n");
    EXPECT_LT(file.find(L"[MRU]"), file.find(L"[Meta]")) << "the order of the sections";
    EXPECT_LT(file.find(L"[KVXC64]"), file.find(L"[KELDORBASIC]")) << "and of the compilers";
}

// The system adds 214 bytes to a key and fills them up to a multiple of 16, so no real key fits one stored value.
TEST(SettingsText, LongKeysContinueInFurtherKeysAndNoneStandsInClearText) {
    for (const std::size_t length : {12U, 32U, 164U, 255U}) {
        const auto settings = std::make_unique<Settings>(), read = std::make_unique<Settings>();
        SettingsDefaults(*settings);
        SafeCopyW(settings->openAIKey, std::wstring(length, L'k'));
        SafeCopyW(settings->lmStudioKey, L"refused");
        int calls = 0;
        const SettingsTarget target{.protect = [&calls](const SettingRow&, const wchar_t* key) {
            const std::size_t bytes = (std::wcslen(key) + 214 + 15) / 16 * 16;
            return key[0] == L'r' ? L"" : L"[DPAPI]" + std::wstring(2 * bytes - 1, L'A') + std::to_wstring(++calls);
        }};
        StoredKeys keys, readKeys;
        const std::string bytes = ComposeSettings(*settings, keys, target);
        const std::wstring file = Wide(bytes);
        const std::wstring first = StoredIn(file, L"AI", L"OpenAIKey"), second = StoredIn(file, L"AI", L"OpenAIKey2");
        EXPECT_LE(first.size(), 511U);
        EXPECT_EQ(second != L"(none)", length > 30) << length;
        EXPECT_EQ(StoredIn(file, L"AI", L"LMStudioKey"), L"") << "not protected, not stored";
        EXPECT_EQ(ComposeSettings(*settings, keys, target), bytes) << "a key that is unchanged is not protected anew";
        std::wstring joined;
        ParseSettings(
            {.text = [&](auto section, auto key, auto) { return StoredIn(file, section, key); },
             .number = [](auto, auto, auto number) { return number; },
             .unprotect = [&](auto stored, auto, auto) { return joined = joined.empty() ? stored : joined, false; },
             .fileExists = [](auto) { return false; }},
            *read, readKeys);
        EXPECT_EQ(joined, keys[0].stored);
    }
}

TEST(SettingsEffects, FollowFromWhatDiffers) {
    const struct {
        const char* name;
        void (*change)(Settings& settings);
        std::uint32_t effects;
    } cases[] = {
        {"nothing", [](Settings&) {}, 0},
        {"text after the end", [](Settings& s) { s.fontName[63] = L'x'; }, 0},
        {"read when it is used", [](Settings& s) { s.backupOnSave = 1; }, 0},
        {"recent file", [](Settings& s) { s.mruCount = 1; }, 0},
        {"font", [](Settings& s) { s.fontName[0] = L'x'; }, kEffectEditors},
        {"last colour", [](Settings& s) { s.colors[kColorOverrides - 1] = 1; }, kEffectEditors},
        {"theme", [](Settings& s) { s.theme = 1; }, kEffectEditors | kEffectFrame},
        {"output font", [](Settings& s) { s.outputFontSize = 30; }, kEffectFrame},
        {"colours of the output", [](Settings& s) { s.readableOutput = 1; }, kEffectFrame},
        {"splitter", [](Settings& s) { s.splitter = 1; }, kEffectLayout},
        {"compiler", [](Settings& s) { s.activeCompiler = 1; }, kEffectCompiler},
        {"path of a compiler", [](Settings& s) { s.compilers[4].path[0] = L'x'; }, kEffectCompiler},
        {"flags", [](Settings& s) { s.compilers[4].flags[0] = L'x'; }, 0},
        {"shell", [](Settings& s) { s.compilers[1].registerExtension = 1; }, kEffectShell},
        {"saving", [](Settings& s) { s.autoSaveInterval = 3; }, kEffectTimers},
        {"session saving", [](Settings& s) { s.autoSaveEnabled = 0; }, kEffectTimers},
        {"project", [](Settings& s) { s.projectRoot[0] = L'x'; }, kEffectProject},
        {"two", [](Settings& s) { s.wordWrap = s.showToolbar = 2; }, kEffectView | kEffectLayout},
    };
    const auto before = std::make_unique<Settings>();
    const auto now = std::make_unique<Settings>();
    SettingsDefaults(*before);
    for (const auto& test : cases) {
        *now = *before;
        test.change(*now);
        EXPECT_EQ(SettingsEffectsOf(*before, *now), test.effects) << test.name;
    }
    EXPECT_EQ(AutoSaveInterval(0), 0U);
    EXPECT_EQ(AutoSaveInterval(-5), 0U);
    EXPECT_EQ(AutoSaveInterval(2), 120000U);
    EXPECT_LE(AutoSaveInterval(2000000000), 0x7FFFFFFFU) << "no timer counts further";
}

TEST(RunOverrides, LastUntilTheSettingIsChanged) {
    const auto settings = std::make_unique<Settings>();
    const auto stored = std::make_unique<Settings>();
    SettingsDefaults(*settings);
    RunOverrides overrides;
    OverrideCompiler(overrides, *settings, 1);
    OverrideCompiler(overrides, *settings, 4);
    OverrideFont(overrides, *settings, L"Tahoma");
    OverrideFontSize(overrides, *settings, 30);
    EndChangedOverrides(overrides, *settings);
    const auto restored = [&]() -> const Settings& {
        *stored = *settings;
        RestoreStored(overrides, *stored);
        return *stored;
    };
    EXPECT_EQ(restored().activeCompiler, 3);
    EXPECT_EQ(restored().fontSize, 12);
    EXPECT_STREQ(restored().fontName, L"Consolas");
    // When the user chooses another size and then that of the command line, it is the user's own.
    for (const int points : {31, 30}) {
        settings->fontSize = points;
        EndChangedOverrides(overrides, *settings);
    }
    EXPECT_EQ(restored().fontSize, 30);
    EXPECT_EQ(restored().activeCompiler, 3);
}

TEST(SecretText, BytesComeBackAndNothingElseIsTaken) {
    const std::vector<std::uint8_t> bytes = {0x00, 0x0A, 0xF0, 0xFF};
    EXPECT_EQ(SecretText(bytes), L"[DPAPI]000AF0FF");
    EXPECT_EQ(SecretBytes(SecretText(bytes)), bytes);
    EXPECT_EQ(SecretBytes(L"[DPAPI]000af0fF"), bytes);
    EXPECT_TRUE(SecretBytes(std::wstring_view(L"[DPAPI]0000").substr(0, 10)).empty()) << "half a byte is none";
    for (const wchar_t* stored : {L"", L"plain", L"000AF0FF", L"[DPAPI]", L"[DPAPI]0", L"[DPAPI]000", L"[DPAPI]0G",
                                  L"[DPAPI]G0", L"[dpapi]00", L" [DPAPI]00", L"[DPAPI]00 "})
        EXPECT_TRUE(SecretBytes(stored).empty()) << std::string(stored, stored + std::wcslen(stored));
}

// Two editors share a file: each save writes what its run has changed, and leaves what the other has.
TEST(Settings, ASaveLeavesWhatOthersHaveChanged) {
    const auto base = std::make_unique<Settings>(), ours = std::make_unique<Settings>(),
               theirs = std::make_unique<Settings>();
    SettingsApplyDefaults(*base);
    const auto setFiles = [](Settings& settings, std::initializer_list<const wchar_t*> files) {
        settings.mruCount = 0;
        for (const wchar_t* const file : files) SafeCopyW(settings.mruFiles[settings.mruCount++], file);
    };
    const auto files = [](const Settings& settings) {
        std::wstring all;
        for (int i = 0; i < settings.mruCount; ++i) all += settings.mruFiles[i];
        return all;
    };
    setFiles(*base, {L"a", L"b", L"c"});
    *ours = *base;
    *theirs = *base;
    const SettingsMark mark = MarkOf(*base);
    ours->theme = 1;
    ours->tabWidth = 8;
    setFiles(*ours, {L"n", L"a", L"c"});  // opened n, took b out
    theirs->fontSize = 20;
    theirs->tabWidth = 3;
    SafeCopyW(theirs->fontName, L"Other");
    setFiles(*theirs, {L"x", L"b", L"a", L"c"});
    MergeSettings(*ours, mark, *theirs);
    EXPECT_EQ(ours->theme, 1);
    EXPECT_EQ(ours->tabWidth, 8) << "changed by both: whoever saves last";
    EXPECT_EQ(ours->fontSize, 20);
    EXPECT_STREQ(ours->fontName, L"Other");
    EXPECT_EQ(files(*ours), L"nacx");
    *ours = *base;
    MergeSettings(*ours, mark, *theirs);
    EXPECT_EQ(files(*ours), L"xbac") << "nothing of ours has changed";
    setFiles(*ours, {});  // cleared
    MergeSettings(*ours, mark, *theirs);
    EXPECT_EQ(files(*ours), L"x");
}
