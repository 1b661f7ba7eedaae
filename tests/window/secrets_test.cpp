// The assistant's keys, against a service that repeats them: nothing that the program shows or writes holds them.
#include "support/http_server.h"

#include "harness.h"

#include <filesystem>

#include "resources/ids.h"

namespace {

constexpr char kMarker[] = "sk-MARKER-0123456789";
constexpr wchar_t kMarkerWide[] = L"sk-MARKER-0123456789";

// The files below the folder that hold the key, in either form of text.
std::string FilesWithMarker(const std::wstring& folder) {
    const auto* const wide = reinterpret_cast<const char*>(kMarkerWide);
    std::string found;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        const std::string bytes = entry.is_regular_file() ? ReadBytes(entry.path().wstring()).value_or("") : "";
        if (bytes.find(kMarker) != std::string::npos ||
            bytes.find(std::string(wide, 2 * std::size(kMarkerWide) - 2)) != std::string::npos)
            found += entry.path().string() + "\n";
    }
    return found;
}

void AwaitRequests(HttpServer& server, std::size_t count) {
    ASSERT_TRUE(WaitFor([&] { return server.Requests().size() == count; })) << server.Requests().size();
}

}  // namespace

TEST(Secrets, AKeyIsShownAndWrittenNowhere) {
    HttpServer server([](const std::string& request) {
        return HttpAnswer(
            401, R"({"error":{"message":")" + std::string(kMarker) + " is wrong in " + request.substr(0, 4) + "\"}}");
    });
    ProgramFolder folder(kCompilers);
    const std::wstring file = folder.Write(L"x.bas", "PRINT 1\r\n");
    folder.SetIni(L"AI", L"OpenAIEnabled", L"1");
    folder.SetIni(L"AI", L"OpenAIKey", kMarkerWide);
    folder.SetIni(L"AI", L"OpenAIUrl", server.Url(L"/v1/chat/completions"));
    folder.SetIni(L"Editor", L"BackupSettings", L"1");
    folder.SetIni(L"Editor", L"BackupOnSave", L"1");
    {
        Editor editor(folder, OpenArgument(file));
        editor.Sci(SCI_SETSEL, 0, 5);
        editor.Do(IDM_AI_OPENAI);
        AwaitRequests(server, 1);
        EXPECT_NE(server.Requests()[0].find(kMarker), std::string::npos) << "the service needs it";
        ASSERT_TRUE(WaitFor([&] { return editor.Status().find(L"401") != std::wstring::npos; })) << editor.Describe();
        std::wstring shown =
            editor.Title() + editor.Status() + editor.Output() + editor.TextOf(editor.Child(IDC_AI_CHAT));
        EXPECT_EQ(shown.find(L"MARKER"), std::wstring::npos) << Utf8(shown);
        // The settings dialog asks the service, too, and exports.
        editor.Post(IDM_PROJECT_SETTINGS);
        const HWND dialog = editor.AwaitDialog(L"Settings").window;
        const HWND search = GetDlgItem(dialog, IDC_SETTINGS_SEARCH);
        editor.Send(search, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"OAI test connection"));
        const HWND page = GetParent(GetNextDlgTabItem(dialog, GetDlgItem(dialog, IDC_SETTINGS_PAGES), FALSE));
        editor.Send(GetNextDlgTabItem(page, nullptr, FALSE), BM_CLICK);
        AwaitRequests(server, 3);
        EXPECT_TRUE(WaitFor([&] {
            shown.clear();
            for (const Dialog& box : editor.Dialogs()) shown += box.text;
            for (HWND part = GetWindow(page, GW_CHILD); part; part = GetWindow(part, GW_HWNDNEXT))
                if ((GetWindowLongPtrW(part, GWL_STYLE) & ES_PASSWORD) == 0) shown += editor.TextOf(part);
            return shown.find(L"401") != std::wstring::npos;
        }));
        EXPECT_EQ(shown.find(L"MARKER"), std::wstring::npos) << Utf8(shown);
        PostMessageW(GetDlgItem(dialog, IDC_SETTINGS_EXPORT), BM_CLICK, 0, 0);
        editor.AnswerFileDialog(folder.File(L"out.ini"));
        editor.Answer(L"Export",
                      L"Settings exported successfully.\n\nThe file holds the AI keys, protected: only this Windows "
                      L"account can read them.",
                      IDOK);
        editor.Send(GetDlgItem(dialog, IDCANCEL), BM_CLICK);
        // Everything else that is written: sources, backups, sessions, the workspace, what a build leaves.
        editor.Type("PRINT 2\r\n");
        editor.Do(IDM_FILE_SAVE);
        editor.Post(IDM_SESSION_SAVE_AS);
        editor.AnswerFileDialog(folder.File(L"named.kvxsess"));
        ASSERT_TRUE(WaitFor([&] { return Exists(folder.File(L"named.kvxsess")); }));
        editor.Do(IDM_WORKSPACE_SAVE);
        editor.Do(IDM_BUILD);
        EXPECT_EQ(FilesWithMarker(folder.path), "") << "while it runs";
        editor.Type("unsaved");
        TerminateProcess(editor.process, 1);  // what is left then is a crash's
        EXPECT_TRUE(editor.ExitCode().has_value());
    }
    EXPECT_TRUE(Exists(folder.File(L"Editor.ini.bak")));
    EXPECT_TRUE(Exists(folder.File(L"out.ini")));
    EXPECT_EQ(FilesWithMarker(folder.path), "");
    EXPECT_TRUE(folder.Ini(L"AI", L"OpenAIKey").starts_with(L"[DPAPI]"));
}

TEST(Secrets, AKeyThatCannotBeReadIsToldOnceAndKept) {
    HttpServer server([](const std::string&) { return HttpAnswer(200, "{}"); });
    const std::wstring stored = L"[DPAPI]00FF00FF00FF";
    ProgramFolder folder;
    folder.KeepNoSession();
    for (const wchar_t* const key : {L"OpenAIEnabled", L"LMStudioEnabled"}) folder.SetIni(L"AI", key, L"1");
    for (const wchar_t* const key : {L"OpenAIKey", L"LMStudioKey"}) folder.SetIni(L"AI", key, stored);
    for (const wchar_t* const key : {L"OpenAIUrl", L"LMStudioUrl"}) folder.SetIni(L"AI", key, server.Url(L"/"));
    Editor editor(folder, OpenArgument(folder.Write(L"x.bas", "PRINT 1\r\n")), Until::Started);
    const Dialog told = editor.AwaitDialog(kProgramTitle);
    EXPECT_NE(told.text.find(L"a key that cannot be read here: OpenAIKey, LMStudioKey."), std::wstring::npos)
        << Utf8(told.text);
    editor.Press(told, IDOK);
    ASSERT_TRUE(editor.AwaitReady());
    EXPECT_TRUE(editor.Dialogs().empty()) << "once for both";
    editor.Sci(SCI_SETSEL, 0, 5);
    editor.Post(IDM_AI_OPENAI);
    editor.Answer(kProgramTitle, L"OpenAI API key is missing. Set it in Settings > OAI.", IDOK);
    editor.Do(IDM_AI_LMSTUDIO);
    AwaitRequests(server, 1);
    EXPECT_EQ(server.Requests()[0].find("DPAPI"), std::string::npos) << "the stored text is no key";
    editor.Do(IDM_VIEW_WORD_WRAP);
    EXPECT_EQ(editor.Close(), 0U);
    for (const wchar_t* const key : {L"OpenAIKey", L"LMStudioKey"}) EXPECT_EQ(folder.Ini(L"AI", key), stored);
}
