// Names that the user gives to places of a debugged program, from the locals view to conditions and a new start.
#include "debug_driver.h"

namespace {

using namespace debug_driver;

const std::string kSource = std::string(kTwice) +
                            "FUNCTION PBMAIN () AS LONG\r\n"          // 6
                            "    LOCAL i AS LONG, total AS LONG\r\n"  // 7
                            "    FOR i = 1 TO 300\r\n"                // 8
                            "        total = total + Twice(i)\r\n"    // 9
                            "    NEXT i\r\n"                          // 10
                            "    FUNCTION = 0\r\n"                    // 11
                            "END FUNCTION\r\n";                       // 12

// Selects the row of a name and types a place into it; the field stays open when the place is refused.
void TypePlace(const Session& session, const std::wstring& name, const std::wstring& place) {
    session.SelectRow(session.RowOf(0, name));
    session.editor.Send(session.List(), WM_CHAR, static_cast<WPARAM>(place.front()), 1);
    ASSERT_TRUE(WaitFor([&] { return session.Field() != nullptr; })) << "typing opens no field";
    for (const wchar_t c : place.substr(1)) session.editor.Send(session.Field(), WM_CHAR, c, 1);
    session.Key(session.Field(), VK_RETURN);
}

void SetCondition(const Session& session, const std::wstring& condition) {
    session.Select(kBreakpoints);
    ASSERT_TRUE(session.Await(L"twice.bas:3"));
    session.SelectRow(0);
    session.Key(session.List(), VK_F2);
    session.Enter(condition);
}

TEST(DebugNames, OfAProcedureAreWorthTheirValuesUntilTheyAreRemoved) {
    const struct {
        const wchar_t *compiler, *bp, *wide, *narrow;
    } cases[] = {{L"kvxa64", L"RBP", L"RBP+16", L"RBP-8"}, {L"kvxa32", L"EBP", L"EBP+8", L"EBP-4"}};
    for (const auto& each : cases) {
        SCOPED_TRACE(Utf8(each.compiler));
        const bool x64 = each.compiler == std::wstring(L"kvxa64");
        if (!x64 && !Variable(L"KVX_NO_WINE32").empty()) continue;
        Session session(L"twice.bas", kSource, each.compiler);
        session.CaretTo(3);
        session.editor.Do(IDM_DEBUG_BREAKPOINT);
        ASSERT_TRUE(session.Start()) << session.editor.Describe();
        session.editor.Do(IDM_DEBUG_CONTINUE);
        ASSERT_TRUE(session.AwaitStop(3));
        session.editor.Foreground();
        session.Select(kLocals);
        ASSERT_TRUE(session.Await(L"n|LONG|?|")) << Utf8(session.All());
        EXPECT_TRUE(session.Await(L"result|LONG|?|"));

        TypePlace(session, L"n", L"RBQ+16");
        EXPECT_TRUE(WaitFor([&] { return session.editor.Status().find(L"no register: RBQ") != std::wstring::npos; }))
            << Utf8(session.editor.Status());
        ASSERT_NE(session.Field(), nullptr) << "what was refused can be mended";
        session.Enter(each.wide);
        EXPECT_TRUE(session.Await(std::wstring(L"n|LONG|") + each.wide + L"|1 (0x00000001)")) << Utf8(session.All());

        SetCondition(session, L"n >= 7 AND n <> 8");
        session.editor.Do(IDM_DEBUG_CONTINUE);
        session.Select(kLocals);
        EXPECT_TRUE(session.Await(L"|7 (0x00000007)")) << Utf8(session.All());

        session.Select(kWatches);
        ASSERT_TRUE(session.Await(L"Type an address here"));
        session.AddWatch(L"n*2");
        EXPECT_TRUE(session.Await(L"n*2|Value|14 (0xE)|")) << Utf8(session.All());
        session.AddWatch(L"result");
        EXPECT_TRUE(session.Await(L"result is not known. The compilers write no names of variables"));
        session.AddWatch(L"m = " + std::wstring(each.wide) + L", BYTE");
        EXPECT_TRUE(session.Await(L"m|BYTE|7 (0x07)|")) << Utf8(session.All());

        // The caller has names of its own, and its values.
        session.Select(kStack);
        ASSERT_TRUE(session.Await(L"twice.bas:9"));
        session.SelectRow(1);
        session.Key(session.List(), VK_RETURN);
        session.Select(kLocals);
        ASSERT_TRUE(session.Await(L"PBMAIN, twice.bas (frame 1)")) << Utf8(session.All());
        EXPECT_EQ(session.RowOf(0, L"n"), -1);
        TypePlace(session, L"i", each.narrow);
        TypePlace(session, L"total", x64 ? L"RBP-16" : L"EBP-8");
        EXPECT_TRUE(WaitFor([&] { return session.RowOf(3, L"7 (0x00000007)") >= 0; })) << Utf8(session.All());
        session.editor.Do(IDM_DEBUG_STOP);
        EXPECT_EQ(session.editor.Close(), 0U);

        Editor again(session.folder, OpenArgument(session.folder.File(L"twice.bas")) + L" --compiler " + each.compiler);
        again.Do(IDM_VIEW_DEBUG_PANE);
        again.Do(IDM_DEBUG_BUILD_START);
        EXPECT_TRUE(WaitFor(
            [&] {
                const HWND list = GetDlgItem(again.Child(IDC_DEBUG_PANE), IDC_DEBUG_LIST);
                return IsWindowVisible(list) && again.CellOf(list, 1, 2) == each.narrow;
            },
            kBuildDeadline))
            << "the names are kept, and the view too";
        again.Do(IDM_DEBUG_STOP);
    }
}

}  // namespace
