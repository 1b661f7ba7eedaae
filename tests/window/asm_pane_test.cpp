// The ASM pane after real builds: the listing, the listing in columns, and the program's code.
#include "harness.h"

#include "resources/ids.h"
#include "support/pe_bytes.h"

namespace {

const std::string kTurns =
    "FUNCTION Twice(BYVAL n AS LONG) AS LONG\r\n  FUNCTION = n + n\r\nEND FUNCTION\r\n\r\n"
    "FUNCTION PBMAIN() AS LONG\r\n  LOCAL i AS LONG\r\n  FOR i = 1 TO 3\r\n    PRINT Twice(i)\r\n  NEXT i\r\nEND "
    "FUNCTION\r\n";

std::wstring Assembly(const Editor& editor) { return editor.TextOf(editor.Child(IDC_ASM)); }

bool AwaitAssembly(const Editor& editor, const std::wstring& part) {
    return WaitFor([&] { return Assembly(editor).find(part) != std::wstring::npos; });
}

// The texts stand in the pane in this order.
void ExpectInOrder(const std::wstring& text, const std::vector<std::wstring>& parts) {
    std::size_t at = 0;
    for (const std::wstring& part : parts) {
        const std::size_t found = text.find(part, at);
        ASSERT_NE(found, std::wstring::npos) << "\"" << Utf8(part) << "\" is missing or too early in\n" << Utf8(text);
        at = found + part.size();
    }
}

std::wstring LineOf(const std::wstring& text, LRESULT line) {
    std::size_t at = 0;
    for (; line > 0 && at != std::wstring::npos; --line) at = text.find(L'\n', at + (at != 0 ? 1 : 0));
    const std::size_t from = at == std::wstring::npos ? text.size() : at + (at != 0 ? 1 : 0);
    return text.substr(from, text.find_first_of(L"\r\n", from) - from);
}

void BuildWith(const Editor& editor, int compiler) {
    editor.Do(compiler);
    editor.Do(IDM_BUILD);
    ASSERT_TRUE(editor.AwaitOutput(L"Build succeeded", kBuildDeadline)) << editor.Describe();
}

}  // namespace

TEST(AsmPane, ShowsTheListingThenItsColumnsThenTheProgramsCode) {
    const ProgramFolder folder(kCompilers);
    const std::wstring source = folder.Write(L"turns.bas", kTurns);
    Editor editor(folder, OpenArgument(source));
    editor.Do(IDM_VIEW_ASM);
    editor.Sci(SCI_GOTOLINE, 7);  // line 8
    BuildWith(editor, IDM_USE_KVXB64);
    const std::wstring program = folder.File(L"turns.exe");
    ASSERT_TRUE(WaitFor([&] {
        const std::wstring text = Assembly(editor);
        const std::size_t code = text.find(L"--- Section .text");
        return code != std::wstring::npos && text.find(L"; 3: END FUNCTION", code) != std::wstring::npos;
    })) << Utf8(Assembly(editor))
        << editor.Describe();
    ExpectInOrder(Assembly(editor),
                  {L"=== Assembly Output ===", L"Source: " + source, L"ASMOUT: " + folder.File(L"turns.asm"),
                   L"; KVXB64 listing of", L"push rbp", L"=== Listing in columns ===", L"; KVXB64 listing of",
                   L"push    rbp", L"; 8:     PRINT Twice(i)", L"call    Twice", L"=== Code of " + program + L" ===",
                   L"; --- Around line 8", L"; 8:     PRINT Twice(i)", L"call    Twice", L"; --- Section .text",
                   L"start:", L"call    PBMAIN", L"PBMAIN:"});

    // The reader is taken to the code of the caret's line.
    const HWND pane = editor.Child(IDC_ASM);
    const auto top = [&] { return LineOf(Assembly(editor), editor.Send(pane, EM_GETFIRSTVISIBLELINE)); };
    EXPECT_TRUE(WaitFor([&] { return top() == L"; --- Around line 8"; })) << Utf8(top());

    EXPECT_EQ(Assembly(editor).find(L"(The source was changed"), std::wstring::npos);

    // Another theme shows a long text again, with its colours; a hidden pane gets it when it is shown.
    const std::wstring whole = Assembly(editor);
    EXPECT_GT(Count(whole, L"\n"), 200);
    editor.Do(IDM_VIEW_DARK_THEME);
    EXPECT_TRUE(WaitFor([&] { return Assembly(editor) == whole; })) << Utf8(Assembly(editor));
    EXPECT_GT(GetRValue(editor.ColourAt(editor.Child(IDC_ASM), 100)), 0x80);
    editor.Do(IDM_VIEW_ASM);
    editor.Do(IDM_VIEW_LIGHT_THEME);
    editor.Do(IDM_VIEW_ASM);
    EXPECT_TRUE(WaitFor([&] { return Assembly(editor) == whole; })) << Utf8(Assembly(editor));
    EXPECT_LT(GetRValue(editor.ColourAt(editor.Child(IDC_ASM), 100)), 0x80);

    // This compiler writes no listing: the one from before is older than the text that was built.
    editor.Sci(SCI_GOTOLINE, 3);
    editor.Type("' ");
    editor.Sci(SCI_GOTOLINE, 7);
    BuildWith(editor, IDM_USE_KVXA64);
    EXPECT_TRUE(AwaitAssembly(editor, L"(The source was changed after this listing was written.)"));

    // Without a listing its place is taken by the message, and the code is still there.
    DeleteFileW(folder.File(L"turns.asm").c_str());
    editor.Do(IDM_VIEW_ASM);
    editor.Do(IDM_VIEW_ASM);
    ASSERT_TRUE(AwaitAssembly(editor, L"(No compiler ASMOUT file was found.")) << editor.Describe();
    ASSERT_TRUE(AwaitAssembly(editor, L"--- Section .text")) << editor.Describe();
    ExpectInOrder(Assembly(editor), {L"(No compiler ASMOUT file was found. Enable ASM output and use /ASMOUT:{asm} for "
                                     L"KeldorBasic/KVXA32.)",
                                     L"=== Code of " + program + L" ===", L"; --- Around line 8"});
    EXPECT_EQ(Assembly(editor).find(L"=== Listing in columns ==="), std::wstring::npos);

    // A program whose lines are told by a side file and trap bytes.
    if (!Variable(L"KVX_NO_WINE32").empty()) GTEST_SKIP() << "no 32-bit programs here";
    editor.Sci(SCI_GOTOLINE, 6);  // line 7
    BuildWith(editor, IDM_USE_KELDORBASIC);
    ASSERT_TRUE(AwaitAssembly(editor, L"; --- Around line 7")) << Utf8(Assembly(editor));
    ASSERT_TRUE(AwaitAssembly(editor, L"--- Section .text")) << Utf8(Assembly(editor));
    ExpectInOrder(Assembly(editor), {L"=== Code of ", L"; --- Around line 7", L"; 7:   FOR i = 1 TO 3", L"int3",
                                     L"; 8:     PRINT Twice(i)", L"int3"});
    EXPECT_EQ(editor.Close(), std::optional<DWORD>(0));
}

TEST(AsmPane, TakesWhateverTheProgramsFileHolds) {
    const ProgramFolder folder(kCompilers);
    const std::wstring source = folder.Write(L"turns.bas", kTurns);
    Editor editor(folder, OpenArgument(source));
    editor.Do(IDM_VIEW_ASM);
    BuildWith(editor, IDM_USE_KVXA64);
    const auto show = [&] {
        editor.Do(IDM_VIEW_ASM);
        editor.Do(IDM_VIEW_ASM);
    };
    const auto showAgain = [&](std::string_view bytes) {
        WriteBytes(folder.File(L"turns.exe"), bytes);
        show();
    };
    WriteBytes(source, kTurns);
    show();
    EXPECT_TRUE(
        AwaitAssembly(editor, L"(The source was changed after the program was built: its lines may be others.)"));
    showAgain("rubbish");
    EXPECT_TRUE(AwaitAssembly(editor, L"(The file is no program.)")) << Utf8(Assembly(editor));
    showAgain("");
    EXPECT_TRUE(AwaitAssembly(editor, L"(The file is empty.)")) << Utf8(Assembly(editor));

    // More than the pane takes: it says so, and the next one, or the end of the program, need not wait for it.
    pe_bytes::Bytes code(8 << 20);
    for (std::size_t i = 0; i < code.size(); ++i) code[i] = static_cast<std::uint8_t>(i % 5 == 0 ? 0xE8 : i % 3);
    const std::string bytes = pe_bytes::Image(true, 0x140000000, {{".text", 0x1000, code}});
    showAgain(bytes);
    EXPECT_TRUE(
        WaitFor([&] { return Assembly(editor).find(L"... the rest is left out here ...") != std::wstring::npos; },
                kBuildDeadline))
        << Utf8(Assembly(editor).substr(0, 2000));
    showAgain(bytes);
    showAgain("rubbish");
    EXPECT_TRUE(AwaitAssembly(editor, L"(The file is no program.)"));
    EXPECT_EQ(Assembly(editor).find(L"sub_"), std::wstring::npos) << "text of the earlier one";
    showAgain(bytes);
    EXPECT_EQ(editor.Close(), std::optional<DWORD>(0));
}
