// The settings dialog without its window: every setting has its place, its limits and its letters; texts are checked and
// put into the settings; rows are placed; what an import takes.
#include "settings/compiler_id.h"
#include "settings/settings_import.h"
#include "settingsui/settings_form.h"
#include "settingsui/settings_preview.h"
#include "settingsui/settings_reference.h"
#include "support/golden_file.h"
#include "ui/form_layout.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <set>
#include <string>

namespace {

std::string Narrow(std::wstring_view text) { return {text.begin(), text.end()}; }
std::string NameOf(const SettingRow& row) { return "[" + Narrow(row.section) + "] " + Narrow(row.key); }

const SettingItem& ItemOf(std::wstring_view key, std::wstring_view section = L"Editor") {
    for (const SettingsPage& page : SettingsPages())
        for (const SettingItem& item : page.items)
            if (item.row != nullptr && key == item.row->key && section == item.row->section) return item;
    ADD_FAILURE() << "not on a page: " << Narrow(key);
    return SettingsPages()[0].items[0];
}

TEST(SettingsPages, TheReferenceIsThatOfTheTable) { ExpectFile("../docs/settings.md", SettingsReference()); }

TEST(SettingsPages, EverySettingIsOnOnePageOrKeptByTheProgram) {
    for (const SettingRow& row : SettingRows()) {
        int places = SettingIsKeptByProgram(row) ? 1 : 0;
        for (const SettingsPage& page : SettingsPages())
            for (const SettingItem& item : page.items) places += item.row == &row || item.beyond == &row ? 1 : 0;
        EXPECT_EQ(places, 1) << NameOf(row);
    }
    const Settings defaults = [] {
        Settings settings;
        SettingsDefaults(settings);
        return settings;
    }();
    for (const SettingsPage& page : SettingsPages()) {
        std::vector<const wchar_t*> labels;
        for (const SettingItem& item : page.items) {
            SCOPED_TRACE(Narrow(page.title) + std::string(": ") + Narrow(item.label));
            labels.push_back(item.label);
            EXPECT_FALSE(item.row == nullptr && item.control < SettingControl::FixedFonts) << "no such setting";
            if (item.row == nullptr) continue;
            EXPECT_EQ(SettingItemProblem(item, SettingItemText(item, defaults)), L"") << "its default is refused";
            EXPECT_EQ(item.control == SettingControl::Check, item.row->type == SettingType::Bool);
            EXPECT_EQ(item.control == SettingControl::Secret, (item.row->flags & kSettingSecret) != 0);
            const bool choice = item.control == SettingControl::Choice;
            if (!choice && item.control != SettingControl::Number) continue;
            if (item.beyond != nullptr) continue;  // PutsWhatIsEdited
            EXPECT_GT(choice ? static_cast<int>(item.choices.size()) : item.high - item.low, 1);
            for (const int end :
                 {choice ? 0 : item.low, choice ? static_cast<int>(item.choices.size()) - 1 : item.high})
                EXPECT_EQ(ApplyLimits(item.row->limits, end), end) << "would be changed when it is loaded";
        }
        std::set<wchar_t> letters;
        for (const std::wstring& label : WithMnemonics(labels, L"SXIRA")) {
            const std::size_t at = label.find(L'&');
            if (at != std::wstring::npos) EXPECT_TRUE(letters.insert(label[at + 1] & ~0x20).second) << Narrow(label);
        }
    }
}

TEST(SettingsForm, RefusesWhatASettingCannotHold) {
    const struct {
        const wchar_t *section, *key, *text;
        bool taken;
    } cases[] = {
        {L"Editor", L"TabWidth", L"1", true},
        {L"Editor", L"TabWidth", L" 8 ", true},
        {L"Editor", L"TabWidth", L"0", false},
        {L"Editor", L"TabWidth", L"33", false},
        {L"Editor", L"TabWidth", L"", false},
        {L"Editor", L"TabWidth", L"4x", false},
        {L"Editor", L"TabWidth", L"99999999999999999999", false},
        {L"Editor", L"EditorZoom", L"-10", true},
        {L"Editor", L"EditorZoom", L"-11", false},
        {L"Editor", L"EditorZoom", L"-", false},
        {L"Colors", L"Keyword", L"", true},
        {L"Colors", L"Keyword", L"#1e90FF", true},
        {L"Colors", L"Keyword", L"1e90FF", false},
        {L"Colors", L"Keyword", L"#1e90FG", false},
        {L"Colors", L"Keyword", L"#000000", false},
        {L"KVXA64", L"Path", L"C:\\a b\\c.exe", true},
        {L"KVXA64", L"Path", L"\"C:\\a b\\c.exe\"", false},
        {L"KVXA64", L"Flags", L"-x \"a b\"", true},
        {L"AI", L"OpenAIUrl", L"https://host:8080/v1", true},
        {L"AI", L"OpenAIUrl", L"host/v1", false},
        {L"AI", L"OpenAIUrl", L"http:///v1", false},
        {L"AI", L"LMStudioUrl", L"http://a b/", false},
        {L"AI", L"OpenAIKey", L"", true},
        {L"AI", L"OpenAIKey", L"123456789", false},
        {L"AI", L"OpenAIKey", L"1234567890", true},
        {L"AI", L"LMStudioKey", L"123", true},
    };
    for (const auto& test : cases)
        EXPECT_EQ(SettingItemProblem(ItemOf(test.key, test.section), test.text).empty(), test.taken)
            << Narrow(test.key) << " \"" << Narrow(test.text) << "\"";
    EXPECT_NE(SettingItemProblem(ItemOf(L"Flags", L"KVXB64"), std::wstring(512, L'x')), L"")
        << "longer than the file's";
    EXPECT_EQ(SettingItemProblem(ItemOf(L"Flags", L"KVXA32"), std::wstring(512, L'x')), L"");
    EXPECT_EQ(ColourText(0x0000FF), L"#FF0000");
    EXPECT_EQ(ColourOfText(L"#102030"), 0x302010);
}

FormPlace PlaceOf(const SettingItem& item) {
    for (std::size_t page = 0; page < SettingsPages().size(); ++page)
        for (std::size_t i = 0; i < SettingsPages()[page].items.size(); ++i)
            if (&SettingsPages()[page].items[i] == &item) return {page, i};
    return {};
}

TEST(SettingsForm, PutsOnlyWhatWasEdited) {
    const auto settings = std::make_unique<Settings>();
    SettingsDefaults(*settings);
    settings->tabWidth = 99;  // by hand, beyond the limits of the dialog
    SettingsForm form = FormOf(*settings);
    EXPECT_FALSE(FormIsEdited(form));
    const FormPlace size = PlaceOf(ItemOf(L"FontSize")), url = PlaceOf(ItemOf(L"OpenAIUrl", L"AI"));
    form.texts[size.page][size.item] = L"5";
    ASSERT_TRUE(FormFirstProblem(form).has_value());
    EXPECT_EQ(FormFirstProblem(form)->item, size.item);
    form.texts[size.page][size.item] = L"20";
    form.texts[url.page][url.item] = L" https://own/v1 ";
    const FormPlace tree = PlaceOf(ItemOf(L"ProjectTreeWidth", L"Project"));  // one number for two settings
    EXPECT_EQ(form.texts[tree.page][tree.item], L"200");
    form.texts[tree.page][tree.item] = L"330";
    EXPECT_FALSE(FormFirstProblem(form).has_value()) << "a value that nobody touched refuses nothing";
    settings->showToolbar = 0;  // changed elsewhere, while the dialog is open
    FormRenew(form, *settings);
    FormPut(form, *settings);
    EXPECT_EQ(settings->fontSize, 20);
    EXPECT_STREQ(settings->openAIUrl, L"https://own/v1");
    EXPECT_EQ(settings->showToolbar, 0);
    EXPECT_EQ(settings->tabWidth, 99);
    EXPECT_EQ(settings->projectTreeWidth, 200);
    EXPECT_EQ(settings->projectTreeExtra, 130);
    EXPECT_EQ(SettingItemText(ItemOf(L"ProjectTreeWidth", L"Project"), *settings), L"330");
}

TEST(SettingsForm, AStyleBringsItsFont) {
    const auto settings = std::make_unique<Settings>();
    SettingsDefaults(*settings);
    SafeCopyW(settings->fontName, L"Segoe UI");
    SettingsForm form = FormOf(*settings);
    const FormPlace style = PlaceOf(ItemOf(L"EditorStylePreset")), face = PlaceOf(ItemOf(L"Font"));
    const auto choose = [&](const wchar_t* row) {
        FormSetText(form, style, row);
        FormPut(form, *settings);
        return std::wstring(settings->fontName) + L" " + std::to_wstring(settings->fontSize);
    };
    EXPECT_EQ(choose(L"3"), L"Courier New 10");
    EXPECT_EQ(choose(L"4"), L"Lucida Console 10");
    EXPECT_EQ(settings->editorStylePreset, 4);
    FormSetText(form, face, L"Cascadia Mono");
    EXPECT_EQ(choose(L"5"), L"Cascadia Mono 10") << "the user's own";
}

TEST(SettingsForm, IsSearchedByEveryWord) {
    const auto hits = [](const wchar_t* query) {
        std::string titles;
        for (const SettingsPage& page : SettingsPages())
            if (SettingsPageMatches(page, query)) titles += Narrow(page.title) + ",";
        return titles;
    };
    EXPECT_EQ(hits(L"TABWIDTH"), "Editor,") << "by the key in the file";
    EXPECT_EQ(hits(L"  font   output "), "Appearance,");
    EXPECT_EQ(hits(L"whisper words"), "");
    EXPECT_EQ(hits(L"sublime"), "Appearance,") << "by a choice";
    EXPECT_EQ(hits(L"backup"), "Files and recovery,") << "by a heading";
    // By words that are not shown.
    for (const auto& [words, page] : {std::pair{L"console pause", "Build,"},
                                      {L"dark mode", "Appearance,"},
                                      {L"utf8", "Files and recovery,"},
                                      {L"working directory", "Debugging,"},
                                      {L"shortcuts", "Keyboard,"},
                                      {L"file association", "KVXA64,KVXB64,KVXA32,KeldorBasic,KVXC64,"}})
        EXPECT_EQ(hits(words), page) << Narrow(words);
    EXPECT_EQ(std::ranges::count(hits(L""), ','), static_cast<int>(SettingsPages().size()));
}

TEST(SettingsPreview, ShowsTheCommandLinesOfTheBuild) {
    const auto settings = std::make_unique<Settings>();
    SettingsDefaults(*settings);
    CompilerSettings& own = settings->compilers[kCompilerKvxb64];
    SafeCopyW(own.path, L"C:\\b.exe");
    SafeCopyW(own.flags, L"-v");
    SafeCopyW(own.includePath, L"C:\\inc");
    settings->profile = 1;
    EXPECT_EQ(
        Narrow(CommandPreviewOf(kCompilerKvxb64, *settings)),
        R"(Build: "C:\b.exe" -o "C:\Sources\program.exe" -v -O2 -I"C:\inc" --asm:"C:\Sources\program.asm" )"
        R"("C:\Sources\program.bas")"
        "\r\n\r\n"
        R"(Syntax check: "C:\b.exe" -o "C:\Sources\program.exe" --syntax-only -I"C:\inc" "C:\Sources\program.bas")");
}

TEST(FormLayout, RowsNeitherOverlapNorLeaveThePage) {
    std::vector<FormRow> rows;
    for (int i = 0; i < 24; ++i)
        rows.push_back(
            {.field = static_cast<FormField>(i % 5), .heading = i % 4 == 0, .button = i % 3 == 0, .hasNote = true});
    for (const int dpi : {96, 144, 240})
        for (const int width : {300, 620, 1200}) {
            for (std::size_t i = 0; i < rows.size(); ++i) rows[i].shown = i % 7 != 4;
            const FormPlan plan = FormLayout(rows, {width * dpi / 96, 400, dpi, 15 * dpi / 96},
                                             [&](std::size_t row, int) { return row % 2 == 0 ? 15 : 0; });
            int above = 0;
            for (std::size_t i = 0; i < rows.size(); ++i) {
                const FormPlaceOfRow& at = plan.rows[i];
                if (!rows[i].shown) {
                    EXPECT_EQ(at.field, FormRect{});
                    continue;
                }
                // Row 4, the first of a group, is hidden: its heading stands above the next one.
                const FormRect& heading = i == 5 ? plan.rows[4].heading : at.heading;
                if (heading.bottom > 0) EXPECT_GE(heading.top, above) << i;
                EXPECT_GE(at.field.top, std::max(above, heading.bottom)) << i;
                EXPECT_GT(at.field.right, at.field.left);
                EXPECT_LE(std::max(at.field.right, at.button.right), width * dpi / 96) << i;
                if (at.label.right > 0) EXPECT_LT(at.label.right, at.field.left);
                if (at.note.bottom > 0) EXPECT_GE(at.note.top, at.field.bottom);
                above = std::max(at.field.bottom, at.note.bottom);
            }
            EXPECT_GT(plan.height, above);
        }
    EXPECT_EQ(FormScrollTo(0, 10, 20, 100, 300), 0);
    EXPECT_EQ(FormScrollTo(0, 150, 180, 100, 300), 80);
    EXPECT_EQ(FormScrollTo(80, 20, 60, 100, 300), 20);
    EXPECT_EQ(FormScrollTo(0, 250, 400, 100, 300), 200) << "no further than the end";
    EXPECT_EQ(FormScrollTo(50, 0, 20, 100, 80), 0);
}

TEST(SettingsImport, TakesWhatIsUnderstoodAndKeepsTheRest) {
    using namespace std::string_literals;
    ImportFinding finding = LookAtImport(std::vector<IniSectionText>{
        {L"Editor", L"TabWidth=3\0FontSize=500\0TabWdth=8\0wordwrap=maybe\0rubbish\0SearchHistory0=x\0; note\0"s},
        {L"KVXA64", L"Path=away.exe\0Flags=-q\0"s},
        {L"AI", L"OpenAIKey=[DPAPI]00FF\0"s},
        {L"Nothing", L"Else=1\0"s},
        {L"Meta", L"Version=2\0"s}});
    const auto before = std::make_unique<Settings>(), now = std::make_unique<Settings>();
    before->fontSize = 17;
    before->sessionMruCount = 2;
    before->compilers[kCompilerKvxa64].registerExtension = 1;
    SafeCopyW(before->compilers[kCompilerKvxa64].path, L"C:\\here.exe");
    SafeCopyW(before->openAIKey, L"sk-of-this-account");
    SafeCopyW(before->projectRoot, L"C:\\project");
    now->tabWidth = 3;
    now->fontSize = 72;
    SafeCopyW(now->compilers[kCompilerKvxa64].flags, L"-q");
    SafeCopyW(now->openAIKey, L"[DPAPI]00FF");
    KeepWhatImportLacks(finding, *before, *now);
    std::string strange;
    for (const std::wstring& key : finding.notUnderstood) strange += Narrow(key) + ",";
    EXPECT_EQ(strange,
              "[Editor] FontSize,[Editor] TabWdth,[Editor] wordwrap,[Editor] rubbish,[Nothing] Else,"
              "[AI] OpenAIKey,");
    EXPECT_EQ(now->tabWidth, 3);
    EXPECT_STREQ(now->compilers[kCompilerKvxa64].flags, L"-q");
    EXPECT_EQ(now->fontSize, 17) << "beyond its limits in the file";
    EXPECT_STREQ(now->compilers[kCompilerKvxa64].path, L"C:\\here.exe") << "the file's is not there";
    EXPECT_EQ(now->compilers[kCompilerKvxa64].registerExtension, 1) << "not in the file";
    EXPECT_STREQ(now->openAIKey, L"sk-of-this-account") << "the file's is of another account";
    EXPECT_STREQ(now->projectRoot, L"C:\\project");
    EXPECT_EQ(now->sessionMruCount, 2);
    EXPECT_TRUE(LookAtImport(std::vector<IniSectionText>{{L"MZ", L"\x90\x03\0"s}}).given.empty());
}

}  // namespace
