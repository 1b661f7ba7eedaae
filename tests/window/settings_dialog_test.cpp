// The settings dialog of the real program, by keys and messages.
#include "support/http_server.h"
#include "support/start_process.h"

#include "harness.h"

#include <commctrl.h>
#include <shlwapi.h>

#include "resources/ids.h"
#include "settingsui/settings_pages.h"

namespace {

struct SettingsWindow {
    const Editor& editor;
    HWND window = nullptr;

    explicit SettingsWindow(const Editor& program) : editor(program) {
        editor.Post(IDM_PROJECT_SETTINGS);
        window = editor.AwaitDialog(L"Settings").window;
    }
    HWND Control(int id) const { return GetDlgItem(window, id); }
    static std::size_t PageOf(std::wstring_view title) {
        const auto& pages = SettingsPages();
        for (std::size_t i = 0; i < pages.size(); ++i)
            if (title == pages[i].title) return i;
        return 0;
    }
    void Go(std::wstring_view title) const {
        editor.Send(Control(IDC_SETTINGS_PAGES), LB_SETCURSEL, PageOf(title));
        editor.Send(window, WM_COMMAND, MAKEWPARAM(IDC_SETTINGS_PAGES, LBN_SELCHANGE),
                    reinterpret_cast<LPARAM>(Control(IDC_SETTINGS_PAGES)));
    }
    // A control of the item with this label; `part`: 0 its field, 2 its button, 3 its note. Null: it has none. What is not
    // in view is made after the page is shown; the last field of a page comes last.
    HWND Of(std::wstring_view title, std::wstring_view label, int part = 0) const {
        const std::size_t page = PageOf(title);
        const auto& items = SettingsPages()[page].items;
        const HWND shown = Control(IDC_SETTINGS_PAGE_FIRST + static_cast<int>(page));
        const auto partOf = [&](std::size_t item, int which) {
            return GetDlgItem(shown, IDC_SETTINGS_ITEM_FIRST + static_cast<int>(item) * SETTINGS_PARTS + which);
        };
        EXPECT_TRUE(WaitFor([&] { return partOf(items.size() - 1, 0) != nullptr; })) << page;
        for (std::size_t i = 0; i < items.size(); ++i)
            if (label == items[i].label) return partOf(i, part);
        return nullptr;
    }
    void Set(HWND field, const std::wstring& text) const {
        editor.Send(field, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
    }
    void Choose(HWND list, WPARAM row) const {
        editor.Send(list, CB_SETCURSEL, row);
        editor.Send(GetParent(list), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(list), CBN_SELCHANGE),
                    reinterpret_cast<LPARAM>(list));
    }
    void Press(int id) const { editor.Send(Control(id), BM_CLICK); }
    // To the control that has the keyboard, through the dialog.
    void Key(WPARAM key) const { PostMessageW(editor.Focus(), WM_KEYDOWN, key, 0); }
    void Mnemonic(WPARAM letter) const { PostMessageW(editor.Focus(), WM_SYSCHAR, letter, 1L << 29); }
    bool AwaitFocus(HWND control) const {
        return WaitFor([&] { return editor.Focus() == control; });
    }
    void PostPress(int id) const { PostMessageW(Control(id), BM_CLICK, 0, 0); }
    std::wstring Note(std::wstring_view title, std::wstring_view label) const {
        return editor.TextOf(Of(title, label, 3));
    }
    bool Gone() const {
        return WaitFor([&] { return !IsWindow(window); });
    }
};

}  // namespace

TEST(SettingsDialog, ChangesApplyAtOnceAndStayAndCancelChangesNothing) {
    ProgramFolder folder(kCompilers);
    folder.KeepNoSession();
    Editor editor(folder);
    editor.Foreground();
    editor.Keys({VK_CONTROL, VK_OEM_COMMA});
    const SettingsWindow byKey{editor};  // the command does not open a second one
    EXPECT_EQ(std::ranges::count(editor.Dialogs(), L"Settings", &Dialog::caption), 1);
    byKey.Set(byKey.Of(L"Editor", L"Tab width"), L"7");
    byKey.Key(VK_ESCAPE);
    ASSERT_TRUE(byKey.Gone()) << editor.Describe();
    EXPECT_EQ(editor.Sci(SCI_GETTABWIDTH), 4);

    const SettingsWindow dialog{editor};
    const HWND apply = dialog.Control(IDC_SETTINGS_APPLY);
    EXPECT_FALSE(IsWindowEnabled(apply));
    dialog.Set(dialog.Of(L"Editor", L"Tab width"), L"6");
    EXPECT_TRUE(IsWindowEnabled(apply));
    editor.Send(dialog.Of(L"Editor", L"Show line numbers"), BM_CLICK);
    dialog.Go(L"Appearance");
    dialog.Choose(dialog.Of(L"Appearance", L"Theme"), 1);
    dialog.Go(L"KVXB64");
    dialog.Set(dialog.Of(L"KVXB64", L"Flags"), L"--own \"a b\"");
    EXPECT_NE(editor.TextOf(dialog.Of(L"KVXB64", L"Result")).find(L"--own \"a b\" --debug"), std::wstring::npos);
    EXPECT_EQ(dialog.Note(L"KVXB64", L"Program"), L"Found.");
    editor.Send(dialog.Of(L"KVXB64", L"Test"), BM_CLICK);
    EXPECT_TRUE(WaitFor([&] { return dialog.Note(L"KVXB64", L"Test").find(L"KVXB64") != std::wstring::npos; }))
        << Utf8(dialog.Note(L"KVXB64", L"Test"));
    dialog.Set(dialog.Of(L"KVXB64", L"Program"), folder.File(L"gone.exe"));
    EXPECT_EQ(dialog.Note(L"KVXB64", L"Program"), L"Not found: there is no such file.");
    dialog.Set(dialog.Of(L"KVXB64", L"Program"), folder.File(L"KVXB64\\KVXB64.exe"));
    dialog.Mnemonic(L'a');
    EXPECT_TRUE(WaitFor([&] { return !IsWindowEnabled(apply); }));
    EXPECT_TRUE(dialog.AwaitFocus(dialog.Control(IDOK))) << "a disabled button would swallow all keys";
    EXPECT_EQ(editor.Sci(SCI_GETTABWIDTH), 6) << "without a restart";
    EXPECT_EQ(editor.Sci(SCI_GETMARGINWIDTHN, 0), 0);
    EXPECT_LT(editor.Sci(SCI_STYLEGETBACK, STYLE_DEFAULT) & 0xFF, 0x60) << "dark";
    EXPECT_EQ(folder.Ini(L"Editor", L"TabWidth"), L"6");
    EXPECT_EQ(folder.Ini(L"Editor", L"Theme"), L"1");
    EXPECT_EQ(folder.Ini(L"KVXB64", L"Flags"), L"--own \"a b\"");

    // A value that cannot be taken: nothing closes, its page and its field are shown, with the reason.
    dialog.Go(L"Editor");
    dialog.Set(dialog.Of(L"Editor", L"Tab width"), L"0");
    dialog.Go(L"AI General");
    dialog.Press(IDOK);
    EXPECT_TRUE(IsWindow(dialog.window));
    EXPECT_TRUE(dialog.AwaitFocus(dialog.Of(L"Editor", L"Tab width"))) << editor.Describe();
    EXPECT_EQ(dialog.Note(L"Editor", L"Tab width"), L"A whole number from 1 to 32.");
    dialog.Set(dialog.Of(L"Editor", L"Tab width"), L"5");
    EXPECT_EQ(dialog.Note(L"Editor", L"Tab width"), L"Columns from one tab stop to the next.");
    dialog.Press(IDOK);
    ASSERT_TRUE(dialog.Gone());
    EXPECT_EQ(editor.Sci(SCI_GETTABWIDTH), 5);
    EXPECT_TRUE(IsWindowEnabled(editor.main));
    EXPECT_EQ(editor.Close(), 0u);
    EXPECT_EQ(folder.Ini(L"Editor", L"ShowLineNumbers"), L"0");
}

TEST(SettingsDialog, IsSearchedAndWorkedByKeysAlone) {
    ProgramFolder folder;
    folder.KeepNoSession();
    folder.SetIni(L"AI", L"OpenAIKey", L"sk-marker-0123456789");
    Editor editor(folder);
    editor.ShowAt(144, 1000, 700);
    const SettingsWindow dialog{editor};
    const HWND pages = dialog.Control(IDC_SETTINGS_PAGES);
    ASSERT_TRUE(dialog.AwaitFocus(pages)) << editor.Describe();
    // Every page is made, and none of its fields is cut off at the right.
    for (std::size_t page = 0; page < SettingsPages().size(); ++page) {
        HWND shown = nullptr;  // made when it is first shown
        ASSERT_TRUE(WaitFor([&] {
            shown = dialog.Control(IDC_SETTINGS_PAGE_FIRST + static_cast<int>(page));
            return IsWindowVisible(shown) != FALSE;
        })) << page;
        RECT client{};
        GetClientRect(shown, &client);
        for (HWND child = GetWindow(shown, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
            RECT at{};
            GetWindowRect(child, &at);
            MapWindowPoints(nullptr, shown, reinterpret_cast<POINT*>(&at), 2);
            EXPECT_LE(at.right, client.right) << page << " " << GetDlgCtrlID(child);
        }
        dialog.Key(VK_DOWN);
    }
    dialog.Mnemonic(L's');
    ASSERT_TRUE(dialog.AwaitFocus(dialog.Control(IDC_SETTINGS_SEARCH)));
    dialog.Set(dialog.Control(IDC_SETTINGS_SEARCH), L"openaikey");
    EXPECT_EQ(editor.Send(pages, LB_GETCOUNT), 1);
    const HWND key = dialog.Of(L"OAI", L"Key");
    EXPECT_TRUE(IsWindowVisible(key));
    EXPECT_FALSE(IsWindowVisible(dialog.Of(L"OAI", L"Address"))) << "it does not match";
    dialog.Key(VK_RETURN);
    EXPECT_TRUE(dialog.AwaitFocus(key)) << "Enter goes to what was found";
    EXPECT_NE(editor.Send(key, EM_GETPASSWORDCHAR), 0) << "hidden";
    editor.Send(dialog.Of(L"OAI", L"Key", 2), BM_CLICK);
    EXPECT_EQ(editor.Send(key, EM_GETPASSWORDCHAR), 0) << "shown on demand";
    EXPECT_EQ(editor.TextOf(key), L"sk-marker-0123456789");
    // A text of several lines is not selected, so that a letter does not replace it.
    dialog.Set(dialog.Control(IDC_SETTINGS_SEARCH), L"description");
    const HWND text = dialog.Of(L"KVXA64", L"Description");
    editor.Send(dialog.window, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(text), TRUE);
    ASSERT_TRUE(dialog.AwaitFocus(text));
    const auto selected = static_cast<DWORD>(editor.Send(text, EM_GETSEL));
    EXPECT_EQ(LOWORD(selected), HIWORD(selected));
    // The keys are found by their command, and by themselves.
    for (const wchar_t* const query : {L"toggle bookmark", L"alt+f2"}) {
        dialog.Set(dialog.Control(IDC_SETTINGS_SEARCH), query);
        EXPECT_EQ(editor.Send(pages, LB_GETCOUNT), 1);
        EXPECT_EQ(editor.Send(dialog.Of(L"Keyboard", L"Keys"), LB_GETCOUNT), 1) << Utf8(query);
    }
    ClipboardEmpty();
    editor.Send(dialog.Of(L"Keyboard", L"Copy List"), BM_CLICK);
    EXPECT_EQ(ClipboardText(), L"Toolbar > Buttons without room\tAlt+F2\r\n");
    dialog.Set(dialog.Control(IDC_SETTINGS_SEARCH), L"start debugging");
    editor.Send(dialog.Of(L"Keyboard", L"Copy List"), BM_CLICK);
    EXPECT_NE(ClipboardText().find(L"Debug > Start Debugging\t\r\n"), std::wstring::npos)
        << "the F5 of the menu is that of Build & Run";
    dialog.Set(dialog.Control(IDC_SETTINGS_SEARCH), L"nobody has this");
    EXPECT_TRUE(IsWindowVisible(dialog.Control(IDC_SETTINGS_NOTHING)));
    // A letter that is typed in the pages begins another search.
    editor.Send(dialog.window, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(pages), TRUE);
    ASSERT_TRUE(dialog.AwaitFocus(pages));
    PostMessageW(pages, WM_CHAR, L'f', 1);
    ASSERT_TRUE(dialog.AwaitFocus(dialog.Control(IDC_SETTINGS_SEARCH)));
    EXPECT_TRUE(WaitFor([&] { return editor.TextOf(dialog.Control(IDC_SETTINGS_SEARCH)) == L"f"; }));
    dialog.Key(VK_ESCAPE);
    EXPECT_TRUE(WaitFor([&] {
        return editor.Send(pages, LB_GETCOUNT) == static_cast<LRESULT>(SettingsPages().size());
    })) << "the first Esc ends the search";
    // On a monitor of another scale all of it grows, the pages that are not shown, too.
    const auto height = [](HWND control) {
        RECT at{};
        GetWindowRect(control, &at);
        return at.bottom - at.top;
    };
    EXPECT_EQ(height(dialog.Of(L"Project", L"Width of the tree")), 35);
    editor.Ask(dialog.window, WM_DPICHANGED, MAKEWPARAM(192, 192), RECT{0, 0, 1240, 880});
    dialog.Go(L"Project");
    EXPECT_EQ(height(dialog.Of(L"Project", L"Width of the tree")), 46);
    EXPECT_EQ(height(dialog.Control(IDOK)), 52);
    dialog.Set(dialog.Control(IDC_SETTINGS_SEARCH), L"tab");
    PostMessageW(dialog.window, WM_SYSCOMMAND, SC_CLOSE, 0);
    EXPECT_TRUE(dialog.Gone()) << "the X of the caption closes it during a search";
    EXPECT_EQ(editor.Log().find(L"sk-marker"), std::wstring::npos);
}

TEST(SettingsDialog, ExportsImportsAndResets) {
    ProgramFolder folder;
    folder.KeepNoSession();
    folder.SetIni(L"Editor", L"TabWidth", L"3");
    folder.SetIni(L"Editor", L"BackupOnSave", L"1");
    Editor editor(folder);
    const SettingsWindow dialog{editor};
    dialog.PostPress(IDC_SETTINGS_EXPORT);
    editor.AnswerFileDialog(folder.File(L"out.ini"));
    editor.Answer(L"Export", L"Settings exported successfully.", IDOK);
    EXPECT_TRUE(Exists(folder.File(L"out.ini")));

    // A file that is no settings file, and one that broke off.
    const std::string before = folder.Read(L"Editor.ini");
    const std::wstring foreign = folder.Write(L"foreign.ini", "MZ\x90 no settings\r\n[x]\r\na=1\r\n");
    const std::wstring broken = folder.Write(L"broken.ini", "[Editor]\r\nTabWidth=9\r\nFontSize=1000\r\nBackupOnS");
    dialog.PostPress(IDC_SETTINGS_IMPORT);
    editor.AnswerFileDialog(foreign);
    editor.Answer(L"Import", L"Import failed.\n\nThe file holds no setting of this editor.", IDOK);
    EXPECT_EQ(folder.Read(L"Editor.ini"), before);
    dialog.PostPress(IDC_SETTINGS_IMPORT);
    editor.AnswerFileDialog(broken);
    editor.Answer(
        L"Import",
        L"Settings imported successfully. Restart dialog to see changes.\n\nNot understood, so your own settings "
        L"stay:\n[Editor] FontSize\n[Editor] BackupOnS",
        IDOK);
    EXPECT_EQ(editor.Sci(SCI_GETTABWIDTH), 9);
    EXPECT_EQ(editor.TextOf(dialog.Of(L"Editor", L"Tab width")), L"9");
    EXPECT_EQ(folder.Ini(L"Editor", L"TabWidth"), L"9");
    EXPECT_EQ(folder.Ini(L"Editor", L"FontSize"), L"12");
    EXPECT_EQ(folder.Ini(L"Editor", L"BackupOnSave"), L"1") << "not in the file, so it stays";
    EXPECT_EQ(folder.Read(L"Editor.ini.bak"), before);

    constexpr wchar_t kQuestion[] =
        L"Reset ALL settings to factory defaults?\n\nThis will clear all compiler paths, AI keys, and preferences.";
    dialog.PostPress(IDC_SETTINGS_RESET);
    editor.Answer(L"Reset All Settings", kQuestion, IDNO);
    EXPECT_TRUE(IsWindow(dialog.window));
    EXPECT_EQ(editor.Sci(SCI_GETTABWIDTH), 9);
    dialog.PostPress(IDC_SETTINGS_RESET);
    editor.Answer(L"Reset All Settings", kQuestion, IDYES);
    editor.Answer(L"Reset Complete", L"Settings reset. Please restart the editor.", IDOK);
    EXPECT_TRUE(dialog.Gone());
    EXPECT_EQ(editor.Sci(SCI_GETTABWIDTH), 4);
    EXPECT_EQ(editor.Sci(SCI_GETUSETABS), 1);
    EXPECT_EQ(editor.Close(), 0u);
    EXPECT_EQ(folder.Ini(L"Editor", L"FontSize"), L"11");
}

TEST(SettingsDialog, TheServiceIsAskedForItsModels) {
    std::atomic<int> status = 401;
    HttpServer server([&](const std::string& request) {
        const bool base = request.starts_with("GET /v1/models ");
        if (base && status == 200) return HttpAnswer(200, R"({"data":[{"id":"zeta"},{"id":"alpha"}]})");
        return HttpAnswer(base ? status.load() : 404, "{}");
    });
    ProgramFolder folder;
    folder.KeepNoSession();
    folder.SetIni(L"AI", L"LMStudioUrl", server.Url(L"/v1/chat/completions"));
    Editor editor(folder);
    const SettingsWindow dialog{editor};
    dialog.Go(L"LM-Studio");
    const HWND model = dialog.Of(L"LM-Studio", L"Model");
    for (const auto& [answer, note] : {std::pair{401, L"401: API key required"},
                                       {500, L"Failed to fetch models. Check URL and API key."},
                                       {200, L"The service answers. Models in the list: 2."}}) {
        status = answer;
        editor.Send(dialog.Of(L"LM-Studio", L"Model", 2), BM_CLICK);
        EXPECT_TRUE(WaitFor([&, note = note] { return dialog.Note(L"LM-Studio", L"Model") == note; }))
            << Utf8(dialog.Note(L"LM-Studio", L"Model"));
    }
    for (const auto& [answer, note] :
         {std::pair{403, L"LM-Studio: the request failed: HTTP 403, the API key was not accepted"},
          {200, L"The service answers. It offers models: 2."}}) {
        status = answer;
        editor.Send(dialog.Of(L"LM-Studio", L"Test Connection"), BM_CLICK);
        EXPECT_TRUE(WaitFor([&, note = note] { return dialog.Note(L"LM-Studio", L"Test Connection") == note; }))
            << Utf8(dialog.Note(L"LM-Studio", L"Test Connection"));
    }
    EXPECT_EQ(editor.TextOf(model), L"local") << "what was chosen stays";
    dialog.Choose(model, 1);
    dialog.Press(IDOK);
    ASSERT_TRUE(dialog.Gone());
    EXPECT_EQ(folder.Ini(L"AI", L"LMStudioModel"), L"zeta");
}

TEST(SettingsDialog, ADoubleClickOpensTheFilesOfTheEditorHere) {
    ProgramFolder folder;
    folder.KeepNoSession();
    const std::wstring source = folder.Write(L"a \xE9.ka32", "a\n");
    SHDeleteKeyW(HKEY_CURRENT_USER, L"Software\\Classes\\.ka32");
    Editor editor(folder);
    const auto tells = [&](const SettingsWindow& settings, const wchar_t* text) {
        return WaitFor([&] { return settings.Note(L"KVXA32", L"Default Program") == text; });
    };
    {
        const SettingsWindow settings(editor);
        settings.Go(L"KVXA32");
        PostMessageW(settings.Of(L"KVXA32", L"Default Program"), BM_CLICK, 0, 0);
        EXPECT_TRUE(tells(settings, L"Files .ka32 are opened by this editor."));
        settings.Key(VK_ESCAPE);
        ASSERT_TRUE(settings.Gone());
    }
    // As the shell does; Wine's knows no types of a user.
    wchar_t text[MAX_PATH] = {};
    DWORD size = sizeof(text);
    RegGetValueW(HKEY_CURRENT_USER, L"Software\\Classes\\KVXE.ka32\\shell\\open\\command", nullptr, RRF_RT_REG_SZ,
                 nullptr, text, &size);
    std::wstring line = text;
    ASSERT_NE(line.find(L"%1"), std::wstring::npos) << Utf8(line);
    PROCESS_INFORMATION started{};
    ASSERT_TRUE(StartProcess(line.replace(line.find(L"%1"), 2, source), &started, {.flags = 0}));
    CloseHandle(started.hThread);
    CloseHandle(started.hProcess);
    EXPECT_TRUE(WaitFor([&] { return editor.Text() == "a\n"; })) << editor.Describe();
    const SettingsWindow settings(editor);
    PostMessageW(settings.Of(L"KVXA32", L"Default Program"), BM_CLICK, 0, 0);
    editor.Answer(L"Default Program", L"Files .ka32 are opened by this editor.", IDOK);
    EXPECT_TRUE(tells(settings, L"Files .ka32 are opened by no program yet."));
}
