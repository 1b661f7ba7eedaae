// Go to definition over files, references, renaming, the outline and the lists of symbols, by keyboard and mouse.
#include "harness.h"

#include "resources/ids.h"

#include <commctrl.h>

namespace {

constexpr char kMain[] =
    "#INCLUDE \"inc\\types.inc\"\r\n"
    "GLOBAL total AS LONG\r\n"
    "SUB Fill(p AS Point)\r\n"
    "    p.x = total ' total\r\n"
    "END SUB\r\n"
    "FUNCTION PBMAIN () AS LONG\r\n"
    "    LOCAL here AS Point\r\n"
    "    Fill here\r\n"
    "    Faraway\r\n"
    "END FUNCTION\r\n";
constexpr char kTypes[] = "' types\r\nTYPE Point\r\n    x AS LONG\r\nEND TYPE\r\n#INCLUDE \"..\\main.bas\"\r\n";
constexpr char kOther[] = "SUB Faraway()\r\n    total = loose\r\nEND SUB\r\n";

struct Shop {
    ProgramFolder folder;
    std::wstring main = folder.Write(L"p\\main.bas", kMain);
    Shop() {
        folder.Write(L"p\\inc\\types.inc", kTypes);
        folder.Write(L"p\\other.bas", kOther);
        folder.SetIni(L"Project", L"Root", folder.File(L"p\\"));
    }
};

void PutCaret(const Editor& editor, int line, int column) {
    const LRESULT start = editor.Sci(SCI_POSITIONFROMLINE, static_cast<WPARAM>(line - 1));
    editor.Sci(SCI_GOTOPOS, static_cast<WPARAM>(start + column - 1));
}

bool AwaitPlace(const Editor& editor, const wchar_t* file, int line, int column) {
    const bool there = WaitFor([&] {
        return editor.TabLabel(editor.ActiveTab()) == file && editor.Line() == line && editor.Column() == column;
    });
    EXPECT_TRUE(there) << Utf8(editor.TabLabel(editor.ActiveTab())) << " " << editor.Line() << ":" << editor.Column();
    return there;
}

std::wstring Cell(const Editor& editor, HWND list, int row, int column) {
    const RemoteBlock block(editor.process, sizeof(LVITEMW) + 600);
    LVITEMW item = {};
    item.iSubItem = column;
    item.pszText = reinterpret_cast<wchar_t*>(block.At(sizeof(LVITEMW)));
    item.cchTextMax = 300;
    block.Put(&item, sizeof item);
    editor.Send(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), block.At());
    wchar_t text[300] = {};
    block.Get(text, sizeof text, sizeof(LVITEMW));
    return text;
}

std::wstring Rows(const Editor& editor, HWND list) {
    std::wstring text;
    const auto count = static_cast<int>(editor.Send(list, LVM_GETITEMCOUNT));
    for (int i = 0; i < count; ++i) text += Cell(editor, list, i, 1) + L"|";
    return text;
}

TEST(Symbols, DefinitionsReferencesAndRenaming) {
    const Shop shop;
    Editor editor(shop.folder, OpenArgument(shop.main));
    PutCaret(editor, 3, 17);
    editor.Do(IDM_SYMBOL_DEFINITION);
    ASSERT_TRUE(AwaitPlace(editor, L"types.inc", 2, 6)) << "the type, in the include";
    editor.Do(IDM_NAV_BACK);
    AwaitPlace(editor, L"main.bas", 3, 17);
    PutCaret(editor, 4, 7);
    editor.Do(IDM_SYMBOL_DEFINITION);
    AwaitPlace(editor, L"types.inc", 3, 5);
    editor.Do(IDM_NAV_BACK);
    PutCaret(editor, 9, 8);
    editor.Do(IDM_SYMBOL_DEFINITION);
    AwaitPlace(editor, L"other.bas", 1, 5);
    editor.Do(IDM_NAV_BACK);
    AwaitPlace(editor, L"main.bas", 9, 8);
    PutCaret(editor, 3, 6);
    editor.Do(IDM_SYMBOL_DEFINITION);
    EXPECT_TRUE(WaitFor([&] { return editor.Status() == L"This is the definition of Fill"; }))
        << "once, though the document is among the files that its include includes";

    // The unsaved text counts, and the file of the project that is not open.
    PutCaret(editor, 1, 1);
    editor.Type("\r\n");
    PutCaret(editor, 5, 14);
    editor.Do(IDM_SYMBOL_REFERENCES);
    ASSERT_TRUE(WaitFor([&] { return editor.Status() == L"3 references to total in 2 files"; }))
        << Utf8(editor.Status());
    const HWND results = GetDlgItem(editor.Child(IDC_FILES_PANE), IDC_FILES_LIST);
    EXPECT_EQ(editor.Send(results, LVM_GETITEMCOUNT), 5);

    editor.Post(IDM_SYMBOL_RENAME);
    Dialog dialog = editor.AwaitDialog(L"Rename Symbol");
    const auto type = [&](const wchar_t* name) {
        editor.Send(GetDlgItem(dialog.window, IDC_RENAME_NAME), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(name));
    };
    type(L"Fill");
    EXPECT_EQ(IsWindowEnabled(GetDlgItem(dialog.window, IDOK)), FALSE) << "it is a SUB already";
    type(L"loose");
    editor.Press(dialog, IDOK);
    editor.Press(editor.AwaitDialog(L"Name in Use"), IDCANCEL);
    EXPECT_NE(editor.Text().find("p.x = total"), std::string::npos) << "nothing would tell it from the other one";
    editor.Post(IDM_SYMBOL_RENAME);
    dialog = editor.AwaitDialog(L"Rename Symbol");
    type(L"sum");
    editor.Press(dialog, IDOK);
    ASSERT_TRUE(WaitFor([&] { return editor.Status() == L"Renamed total to sum: 3 places in 2 files"; }))
        << Utf8(editor.Status());
    EXPECT_NE(editor.Text().find("p.x = sum ' total"), std::string::npos) << editor.Text();
    EXPECT_EQ(shop.folder.Read(L"p\\other.bas"), kOther) << "nothing is saved";
    editor.Do(IDM_EDIT_UNDO);
    EXPECT_EQ(editor.Text(), "\r\n" + std::string(kMain)) << "one step";
}

// The new file has CRLF, while the text in the editor still has LF.
TEST(Symbols, RenamingAndNamesOfPlacesFollowANewFileName) {
    ProgramFolder folder;
    const std::wstring file = folder.Write(L"lf.bas", "' one\nSUB Twice(BYVAL n AS LONG)\n    n = n * 2\nEND SUB\n");
    const std::string names = "\r\nprocedure Twice\r\n  n = RBP+16, LONG\r\n";
    folder.Write(L"DebugNames.txt", "file " + Utf8(file) + names);
    Editor editor(folder, OpenArgument(file));
    editor.Post(IDM_FILE_SAVE_AS);
    editor.AnswerFileDialog(folder.File(L"crlf.bas"));
    ASSERT_TRUE(WaitFor([&] { return editor.TabLabel(0) == L"crlf.bas"; })) << editor.Describe();
    EXPECT_NE(folder.Read(L"DebugNames.txt").find("crlf.bas" + names), std::string::npos);
    DeleteFileW(file.c_str());  // otherwise its names would be renamed, too
    for (const auto& [line, column, name] : {std::tuple{2, 6, L"Thrice"}, {3, 5, L"count"}}) {
        PutCaret(editor, line, column);
        editor.Post(IDM_SYMBOL_RENAME);
        const Dialog dialog = editor.AwaitDialog(L"Rename Symbol");
        editor.Send(GetDlgItem(dialog.window, IDC_RENAME_NAME), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(name));
        editor.Press(dialog, IDOK);
        EXPECT_TRUE(WaitFor([&, name = name] { return editor.Text().find(Utf8(name)) != std::string::npos; }))
            << editor.Text();
        editor.Do(IDM_FILE_SAVE);
    }
    EXPECT_EQ(editor.Text(), "' one\nSUB Thrice(BYVAL count AS LONG)\n    count = count * 2\nEND SUB\n");
    const std::string kept = folder.Read(L"DebugNames.txt");
    EXPECT_NE(kept.find("crlf.bas\r\nprocedure Thrice\r\n  count = RBP+16, LONG"), std::string::npos) << kept;
    EXPECT_NE(kept.find("lf.bas" + names), std::string::npos) << "the other file keeps its names\n" << kept;
    EXPECT_EQ(editor.Close(), 0u);
}

TEST(Symbols, OutlineFollowsTheDocument) {
    const Shop shop;
    Editor editor(shop.folder, OpenArgument(shop.main));
    EXPECT_EQ(editor.Child(IDC_OUTLINE_PANE), nullptr) << "a start does not pay for it";
    editor.Do(IDM_VIEW_OUTLINE);
    const HWND pane = editor.Child(IDC_OUTLINE_PANE);
    const HWND list = GetDlgItem(pane, IDC_OUTLINE_LIST), field = GetDlgItem(pane, IDC_OUTLINE_FILTER);
    const auto shows = [&](const wchar_t* rows) {
        EXPECT_TRUE(WaitFor([&] { return Rows(editor, list) == rows; })) << Utf8(Rows(editor, list));
    };
    shows(L"inc\\types.inc|total|Fill(p AS Point)|PBMAIN()|");
    // An edit shows up, and the row of the caret is chosen.
    PutCaret(editor, 6, 1);
    editor.Type("SUB Late(name AS LONG)\r\n\r\nEND SUB\r\n");
    shows(L"inc\\types.inc|total|Fill(p AS Point)|Late(name AS LONG)|PBMAIN()|");
    // A keyword that names a variable is not put into capitals.
    PutCaret(editor, 7, 1);
    for (const char c : std::string_view("name = let ")) editor.Send(editor.Sci(), WM_CHAR, static_cast<WPARAM>(c));
    EXPECT_TRUE(WaitFor([&] { return editor.Text().find("\r\nname = LET \r\n") != std::string::npos; }))
        << editor.Text();
    PutCaret(editor, 4, 1);
    EXPECT_TRUE(
        WaitFor([&] { return editor.Send(list, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED) == 2; }));
    // Filter, Enter, Escape.
    editor.Send(field, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"la"));
    shows(L"Late(name AS LONG)|");
    editor.Send(field, WM_KEYDOWN, VK_RETURN);
    AwaitPlace(editor, L"main.bas", 6, 5);
    EXPECT_EQ(editor.Focus(), editor.Sci());
    editor.Send(field, WM_KEYDOWN, VK_ESCAPE);
    editor.Send(pane, WM_COMMAND, MAKEWPARAM(IDC_OUTLINE_ORDER, BN_CLICKED));
    shows(L"Fill(p AS Point)|inc\\types.inc|Late(name AS LONG)|PBMAIN()|total|");

    // The list of the document's symbols.
    editor.Foreground();
    editor.Keys({VK_CONTROL, 'T'});
    ASSERT_TRUE(WaitFor([&] { return editor.Child(IDC_QUICK_OPEN) != nullptr; }));
    editor.Keys({'P'});
    editor.Keys({'B'});
    editor.Keys({VK_RETURN});
    AwaitPlace(editor, L"main.bas", 9, 10);
}

}  // namespace
