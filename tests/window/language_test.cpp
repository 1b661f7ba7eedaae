// The real program in another language: a catalogue made from the list of all texts, in which each Latin letter has
// become a wide one. So any Latin word in a text that the program shows is one that cannot be translated, and dialogs must
// have room for texts that are longer by 40 % and more.
#include "build_driver.h"
#include "class_name.h"
#include "fitting.h"

#include <commctrl.h>

#include <algorithm>
#include <array>
#include <set>
#include <string>
#include <vector>

#include "resources/ids.h"
#include "settingsui/settings_pages.h"

namespace {

constexpr int kWide = 0xFF21 - 'A';  // from a letter to the wide one

bool IsLatin(wchar_t c) { return (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z'); }

// The length of a format at `at`, which is a percent sign.
std::size_t FormatLength(std::wstring_view text, std::size_t at) {
    std::size_t end = at + 1;
    while (end < text.size() && std::wstring_view(L"-+ #.0123456789*hlzI").find(text[end]) != std::wstring_view::npos)
        ++end;
    const bool format = end < text.size() && std::wstring_view(L"diouxXcsp").find(text[end]) != std::wstring_view::npos;
    return format ? end + 1 - at : 1;
}

// A text as it stands in the list, with its escapes, every second letter twice. Formats and the keys of a menu stay.
std::wstring InWideLetters(std::wstring_view text) {
    const std::size_t keys = std::min(text.rfind(L"\\t"), text.size());
    std::wstring wide;
    int letters = 0;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t kept = text[at] == L'\\' ? 2 : text[at] == L'%' ? FormatLength(text, at) : 0;
        if (kept > 0 || at >= keys) {
            wide += text.substr(at, std::max<std::size_t>(kept, 1));
            at += std::max<std::size_t>(kept, 1);
            continue;
        }
        const bool letter = IsLatin(text[at]);
        const std::size_t times = letter && ++letters % 2 == 0 ? 2 : 1;
        wide.append(times, letter ? static_cast<wchar_t>(text[at] + kWide) : text[at]);
        ++at;
    }
    return wide;
}

std::string WideCatalogue() {
    std::string catalogue;
    std::wstring list = Wide(ReadBytes(Wide(KVX_TESTS_DIR) + L"/../src/resources/texts.txt").value_or(""));
    std::erase(list, L'\r');
    for (std::size_t at = 0; at < list.size();) {
        const std::size_t end = std::min(list.find(L'\n', at), list.size());
        const std::wstring line = list.substr(at, end - at);
        if (line.starts_with(L'"')) catalogue += Utf8(line) + "\n= " + Utf8(InWideLetters(line)) + "\n";
        at = end + 1;
    }
    return catalogue;
}

// Names, which stay as they are in every language, and keys.
const std::set<std::wstring> kNames = {
    L"KVX",    L"KVXA",     L"KVXB",   L"KVXC",     L"KVXE",     L"KeldorBasic", L"Editor", L"OpenAI",    L"Studio",
    L"UTF",    L"ANSI",     L"CRLF",   L"Untitled", L"Consolas", L"Ctrl",        L"Shift",  L"Alt",       L"Break",
    L"PageUp", L"PageDown", L"Home",   L"End",      L"Ins",      L"Del",         L"Tab",    L"Esc",       L"Left",
    L"Right",  L"Down",     L"OAI",    L"PBMAIN",   L"FUNCTION", L"debug",       L"BYTE",   L"WORD",      L"DWORD",
    L"QUAD",   L"INTEGER",  L"SINGLE", L"DOUBLE",   L"STRING",   L"ASCIIZ",      L"Space",  L"Backspace", L"Num",
    L"ASM",    L"RBP",      L"LONG",   L"Enter"};

// Words of at least three Latin letters that are no names. Paths are the user's.
std::wstring LatinWords(const std::wstring& text) {
    std::wstring words, word, token;
    bool path = false;
    const auto endWord = [&] {
        if (word.size() >= 3 && !kNames.contains(word)) token += word + L" ";
        word.clear();
    };
    for (std::size_t i = 0; i <= text.size(); ++i) {
        const wchar_t c = i < text.size() ? text[i] : L' ';
        if (IsLatin(c)) {
            word += c;
            continue;
        }
        endWord();
        path = path || c == L'\\' || (c == L'.' && i + 1 < text.size() && IsLatin(text[i + 1]));
        if (c > L' ') continue;
        if (!path) words += token;
        token.clear();
        path = false;
    }
    return words;
}

void ExpectTranslated(const std::string& where, const std::wstring& text) {
    EXPECT_EQ(Utf8(LatinWords(text)), "") << where << ": " << Utf8(text);
}

struct LanguageDriver {
    const Editor& editor;

    std::wstring ColumnTitle(HWND list, int column) const {
        const auto header = reinterpret_cast<HWND>(editor.Send(list, LVM_GETHEADER));
        constexpr std::size_t kText = 256;
        const RemoteBlock block(editor.process, kText + 512);
        HDITEMW item = {};
        item.mask = HDI_TEXT;
        item.cchTextMax = 200;
        item.pszText = reinterpret_cast<wchar_t*>(block.At(kText));
        block.Put(&item, sizeof(item));
        if (header == nullptr || editor.Send(header, HDM_GETITEMW, static_cast<WPARAM>(column), block.At()) == 0)
            return {};
        std::array<wchar_t, 200> text = {};
        block.Get(text.data(), sizeof(text), kText);
        return text.data();
    }
    void ExpectLines(const std::string& where, HWND list, UINT count, UINT get) const {
        const LRESULT lines = editor.Send(list, count);
        for (LRESULT i = 0; i < lines; ++i) {
            std::array<wchar_t, 512> text = {};
            editor.Send(list, get, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(text.data()));
            ExpectTranslated(where + ", a line", text.data());
        }
    }
    // Captions, labels, buttons and columns; fields hold what the user has typed.
    void ExpectWindow(const std::string& where, HWND window, bool lists, Font font = Font::Dialog) const {
        ExpectTranslated(where, editor.TextOf(window));
        ExpectControls(where, window, lists, font);
    }
    void ExpectControls(const std::string& where, HWND window, bool lists, Font font = Font::Dialog) const {
        const bool dialog = ClassOf(window) == L"#32770" || font == Font::Message;
        for (const HWND child : VisibleChildren(window)) {
            const std::wstring kind = ClassOf(child);
            if (dialog) ExpectWhole(where, child, editor.TextOf(child), font);
            if (kind == WC_STATICW || kind == WC_BUTTONW || kind.starts_with(L"KVXE"))
                ExpectTranslated(where, editor.TextOf(child));
            for (int column = 0; kind == WC_LISTVIEWW && column < 8; ++column)
                ExpectTranslated(where + ", a column", ColumnTitle(child, column));
            if (lists && kind == WC_LISTBOXW) ExpectLines(where, child, LB_GETCOUNT, LB_GETTEXT);
            if (lists && kind == WC_COMBOBOXW) ExpectLines(where, child, CB_GETCOUNT, CB_GETLBTEXT);
        }
    }
    void ExpectToolbar() const {
        const HWND bar = editor.Child(IDC_TOOLBAR);
        const LRESULT buttons = editor.Send(bar, TB_BUTTONCOUNT);
        EXPECT_GT(buttons, 20);
        for (LRESULT i = 0; i < buttons; ++i) {
            const TBBUTTON button = editor.Ask<TBBUTTON>(bar, TB_GETBUTTON, static_cast<WPARAM>(i));
            if ((button.fsStyle & BTNS_SEP) != 0) continue;
            const RemoteBlock block(editor.process, 1024);
            std::array<wchar_t, 512> text = {};
            editor.Send(bar, TB_GETBUTTONTEXTW, static_cast<WPARAM>(button.idCommand), block.At());
            block.Get(text.data(), sizeof(text));
            text.back() = 0;
            ExpectTranslated("toolbar", text.data());
        }
    }
    // Every command of the menu bar with its path.
    void ExpectPalette() const {
        editor.Keys({VK_CONTROL, VK_SHIFT, 'P'});
        const auto list = [&] { return GetDlgItem(editor.Child(IDC_QUICK_OPEN), IDC_QUICK_LIST); };
        const auto rows = [&] { return static_cast<int>(editor.Send(list(), LVM_GETITEMCOUNT)); };
        ASSERT_TRUE(WaitFor([&] { return list() != nullptr && rows() > 150; })) << editor.Describe();
        for (int row = 0; row < rows(); ++row) ExpectTranslated("palette", editor.CellOf(list(), row, 0));
        ExpectWindow("palette", editor.Child(IDC_QUICK_OPEN), false);
        editor.Keys({VK_ESCAPE});
    }
    void ExpectSettings() const {
        editor.Post(IDM_PROJECT_SETTINGS);
        const Dialog settings = editor.AwaitDialog(InWideLetters(L"Settings"));
        const HWND pages = GetDlgItem(settings.window, IDC_SETTINGS_PAGES);
        ExpectLines("pages of the settings", pages, LB_GETCOUNT, LB_GETTEXT);
        for (std::size_t page = 0; page < SettingsPages().size(); ++page) {
            editor.Send(pages, LB_SETCURSEL, page);
            editor.Send(settings.window, WM_COMMAND, MAKEWPARAM(IDC_SETTINGS_PAGES, LBN_SELCHANGE),
                        reinterpret_cast<LPARAM>(pages));
            const int last =
                IDC_SETTINGS_ITEM_FIRST + static_cast<int>(SettingsPages()[page].items.size() - 1) * SETTINGS_PARTS;
            const HWND shown = GetDlgItem(settings.window, IDC_SETTINGS_PAGE_FIRST + static_cast<int>(page));
            EXPECT_TRUE(WaitFor([&] { return GetDlgItem(shown, last) != nullptr; })) << page;
            ExpectWindow("page " + Utf8(SettingsPages()[page].title), shown, false, Font::Message);
        }
        ExpectWindow("settings", settings.window, false, Font::Message);
        editor.Press(settings, IDCANCEL);
    }
};

}  // namespace

TEST(Language, EveryTextThatIsShownIsThatOfTheCatalogue) {
    for (const wchar_t* text : {L"&Arguments:", L"Regular e&xpression", L"Of the program that is debugged"})
        ASSERT_GE(SizeOf(InWideLetters(text), Font::Dialog, 0).cx * 10, SizeOf(text, Font::Dialog, 0).cx * 14)
            << "40 % longer";
    FakeFolder folder("out: q(3): error: x\nexit: 1\n");
    folder.Write(L"languages\\Wide.txt", WideCatalogue());
    folder.SetIni(L"Editor", L"Language", L"Wide");
    for (const wchar_t* pane : {L"ShowErrorList", L"ShowTerminal", L"ShowOutline"})
        folder.SetIni(L"Editor", pane, L"1");
    folder.SetIni(L"Project", L"ShowProjectTree", L"1");
    folder.SetIni(L"AI", L"ShowAISidebar", L"1");
    const std::wstring file = folder.Write(L"q.bas", kHello);
    Editor editor(folder, OpenArgument(file));
    EXPECT_EQ(Count(editor.Log(), L"Wide.txt, line"), 0) << "the catalogue has faults\n" << Utf8(editor.Log());
    editor.Foreground();
    editor.ShowAt(96, 1250, 860);
    const LanguageDriver language{editor};
    for (const int command : {IDM_VIEW_ASM, IDM_VIEW_DEBUG_PANE}) editor.Do(command);
    language.ExpectWindow("frame", editor.main, false);
    language.ExpectToolbar();
    for (int part = 0; part < 10; ++part) ExpectTranslated("status bar", editor.Status(part));
    ExpectTranslated("output", Build(editor));
    EXPECT_GT(editor.Output().size(), 50U);
    ExpectTranslated("status bar", editor.Status());
    language.ExpectPalette();

    for (const auto& [command, title] : {std::pair{IDM_EDIT_GOTO, L"Go To Line"},
                                         {IDM_FILES_FIND, L"Find in Files"},
                                         {IDM_FILES_REPLACE, L"Replace in Files"},
                                         {IDM_EDIT_FIND, L"Find"},
                                         {IDM_EDIT_REPLACE, L"Find and Replace"},
                                         {IDM_DEBUG_EXCEPTIONS, L"Exceptions"},
                                         {IDM_DEBUG_PROGRAM, L"Program Arguments"},
                                         {IDM_DEBUG_CONDITIONAL, L"Conditional Breakpoint"},
                                         {IDM_DEBUG_NAME_PLACE, L"Name a Place"},
                                         {IDM_HELP_KEYS, L"Keyboard Map"},
                                         {IDM_PROJECT_NEW, L"New Project"}}) {
        editor.Post(command);
        const Dialog dialog = editor.AwaitDialog(InWideLetters(title));
        language.ExpectWindow(Utf8(title), dialog.window, true);
        editor.Press(dialog, IDCANCEL);
    }
    language.ExpectSettings();

    // Boxes that ask. What they list is the user's.
    const auto box = [&](const std::wstring& title, int button) {
        const Dialog dialog = editor.AwaitDialog(title);
        language.ExpectControls(Utf8(title), dialog.window, false);
        editor.Press(dialog, button);
    };
    editor.Sci(SCI_GOTOPOS, static_cast<WPARAM>(editor.Text().find("PBMAIN") + 1));
    editor.Post(IDM_SYMBOL_RENAME);
    box(InWideLetters(L"Rename Symbol"), IDCANCEL);
    WriteBytes(file, std::string("' other\r\n") + kHello);
    box(kProgramTitle, IDC_OUTSIDE_FIRST);
    for (int i = 0; i < 2; ++i) {
        editor.Do(IDM_FILE_NEW);
        editor.Type("x");
    }
    editor.Post(IDM_FILE_CLOSE_ALL);
    box(InWideLetters(kUnsaved), IDCANCEL);

    for (int left = 2; left > 0; --left) {
        editor.Post(IDM_FILE_CLOSE);
        const Dialog question = editor.AwaitDialog(InWideLetters(kUnsaved));
        ExpectTranslated("question", question.caption + L" " + question.text);
        editor.Press(question, IDNO);
        ASSERT_TRUE(WaitFor([&] { return editor.Tabs() == left; }));
    }
    editor.Do(IDM_FILE_CLOSE_ALL);
    ASSERT_TRUE(WaitFor([&] { return editor.Child(IDC_START_PAGE) != nullptr; }));
    language.ExpectWindow("start page", editor.Child(IDC_START_PAGE), false);
}
