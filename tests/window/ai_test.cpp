// The assistant as the user meets it: what its commands say, send and show, against a real server on the loopback
// address.
#include "support/http_server.h"

#include "build_driver.h"

#include <mmsystem.h>
#include "editor/margins.h"

#include "resources/ids.h"

#include <richedit.h>

namespace {

std::string ChatAnswer(const std::string& content) {
    return R"({"choices":[{"message":{"content":")" + content + "\"}}]}";
}

struct AiFolder : ProgramFolder {
    AiFolder(bool openAi, bool local, const wchar_t* key, const std::wstring& url = L"http://127.0.0.1:9/") {
        KeepNoSession();
        SetIni(L"AI", L"OpenAIEnabled", openAi ? L"1" : L"0");
        SetIni(L"AI", L"LMStudioEnabled", local ? L"1" : L"0");
        SetIni(L"AI", L"OpenAIKey", key);
        SetIni(L"AI", L"PrimaryAi", local && !openAi ? L"1" : L"0");
        SetIni(L"AI", L"OpenAIUrl", url);
        SetIni(L"AI", L"LMStudioUrl", url);
    }
};

std::wstring Chat(const Editor& editor) { return editor.TextOf(editor.Child(IDC_AI_CHAT)); }

bool AwaitChat(const Editor& editor, std::wstring_view part) {
    return WaitFor([&] { return Chat(editor).find(part) != std::wstring::npos; });
}

void TypeInChat(const Editor& editor, const wchar_t* text) {
    editor.Send(editor.Child(IDC_AI_INPUT), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text));
}

void ExpectMessage(const Editor& editor, int command, const wchar_t* text) {
    editor.Post(command);
    editor.Answer(kProgramTitle, text, IDOK);
}

// The marks of a replacement that waits: "1[removed lines] +2", the line below which they stand and each new line.
std::string Marks(const Editor& editor) {
    std::string marks;
    const bool shown = editor.Sci(SCI_ANNOTATIONGETVISIBLE) != ANNOTATION_HIDDEN;
    for (WPARAM line = 0; line < static_cast<WPARAM>(editor.Sci(SCI_GETLINECOUNT)); ++line) {
        const auto space = marks.empty() ? "" : " ";
        if ((editor.Sci(SCI_MARKERGET, line) & 1 << kMarkNewLine) != 0) marks += space + ("+" + std::to_string(line));
        if (!shown || editor.Sci(SCI_ANNOTATIONGETLINES, line) == 0) continue;
        struct Buffer {
            char text[200] = {};
        };
        const Buffer removed = editor.Ask<Buffer>(editor.Sci(), SCI_ANNOTATIONGETTEXT, line);
        marks += space + std::to_string(line) + "[" + removed.text + "]";
    }
    return marks;
}

}  // namespace

TEST(Assistant, SaysWhatIsMissing) {
    constexpr wchar_t kNoOpenAi[] = L"OpenAI is not enabled. Enable it in Settings > AI.";
    constexpr wchar_t kNoLocal[] = L"LM-Studio is not enabled. Enable it in Settings > AI.";
    constexpr wchar_t kNoSelection[] = L"Please select some text in the editor first.";
    const struct {
        bool openAi, local;
        const wchar_t *key, *askOpenAi, *askLocal, *transcribe, *edit;
    } cases[] = {
        {false, false, L"", kNoOpenAi, kNoLocal, L"AI features are disabled. Enable them in Settings > AI General.",
         L"Selected primary AI is not enabled. Enable it in Settings > AI."},
        {true, false, L"", L"OpenAI API key is missing. Set it in Settings > OAI.", kNoLocal,
         L"OpenAI API key is missing. Set it in Settings > OpenAI.", L"Editor is empty."},
        {true, true, L"sk-0123456789", kNoSelection, kNoSelection,
         L"Transcription not yet implemented. Model: whisper-1", L"Editor is empty."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        AiFolder folder(c.openAi, c.local, c.key);
        Editor editor(folder);
        ExpectMessage(editor, IDM_AI_OPENAI, c.askOpenAi);
        ExpectMessage(editor, IDM_AI_LMSTUDIO, c.askLocal);
        ExpectMessage(editor, IDM_AI_TRANSCRIBE, c.transcribe);
        TypeInChat(editor, L"shorter");
        ExpectMessage(editor, IDM_AI_EDIT, c.edit);
        if (c.openAi) {
            editor.Do(IDM_FILE_CLOSE_ALL);
            ExpectMessage(editor, IDM_AI_EDIT, L"No active editor.");
            continue;
        }
        ExpectMessage(editor, IDM_AI_DO, c.edit);  // asked before anything is recorded
        const std::wstring before = Chat(editor);
        editor.Do(IDC_AI_SEND);
        EXPECT_EQ(Chat(editor), before +
                                    L"[You]: shorter\r\n[AI]: AI features are disabled. Enable them in Settings > "
                                    L"AI.\r\n");
        editor.Do(IDC_AI_SEND);
        EXPECT_EQ(Count(Chat(editor), L"[You]"), 1) << "an empty line sends nothing";
        editor.Do(IDM_AI_UNDO);
        EXPECT_TRUE(editor.Dialogs().empty()) << "without a replacement nothing is undone";
    }
}

TEST(Assistant, AReplyIsAppliedOnceAndOnlyToWhatWasSent) {
    HttpServer server(
        [](const std::string&) { return HttpAnswer(200, ChatAnswer("So:\\n```basic\\nPRINT 2\\nEND\\n```")); });
    AiFolder folder(false, true, L"", server.Url(L"/v1/chat/completions"));
    folder.SetIni(L"AI", L"AiStream", L"0");
    Editor editor(folder);
    editor.Type("REM a\r\nPRINT 1\r\nREM b");
    editor.Sci(SCI_SETSEL, 7, 14);
    editor.Do(IDM_AI_LMSTUDIO);
    EXPECT_TRUE(editor.AwaitOutput(L"[LM-Studio] Thinking..."));
    ASSERT_TRUE(AwaitChat(editor, L"END\r\n```")) << editor.Describe();
    EXPECT_TRUE(server.Requests()[0].ends_with(
        "\r\n\r\n"
        R"({"model":"local","messages":[{"role":"system","content":"You are a helpful coding assistant."},)"
        R"({"role":"user","content":"PRINT 1"}],"max_tokens":2048,"temperature":0.7})"))
        << server.Requests()[0];
    ASSERT_TRUE(WaitFor([&] { return editor.Status().starts_with(L"LM-Studio answered"); }));
    constexpr wchar_t kApplied[] = L"AI replacement applied. Click AI Do again to accept, or AI Undo to revert.";
    ExpectMessage(editor, IDM_AI_APPLY, kApplied);
    EXPECT_EQ(editor.Text(), "REM a\r\nPRINT 2\r\nEND\r\nREM b");
    EXPECT_TRUE(editor.ButtonShown(IDM_AI_UNDO));
    EXPECT_EQ(Marks(editor), "0[PRINT 1] +1 +2");
    editor.Sci(SCI_SETSEL, 0, 0);
    editor.Type("!\r\n");  // two steps later, elsewhere
    editor.Sci(SCI_DOCUMENTEND);
    editor.Type("!");
    EXPECT_EQ(Marks(editor), "1[PRINT 1] +2 +3");
    ExpectMessage(editor, IDM_AI_UNDO, L"AI replacement undone.");
    EXPECT_EQ(editor.Text(), "!\r\nREM a\r\nPRINT 1\r\nREM b!");
    EXPECT_EQ(Marks(editor), "");
    EXPECT_EQ(editor.Sci(SCI_GETANCHOR), 10) << "the selection is back, too";
    EXPECT_EQ(editor.Sci(SCI_GETCURRENTPOS), 17);
    ExpectMessage(editor, IDM_AI_APPLY, kApplied);
    editor.Sci(SCI_LINEDELETE);  // the caret is on the first new line
    EXPECT_TRUE(WaitFor([&] { return Marks(editor) == "1[PRINT 1] +2"; })) << Marks(editor);
    editor.Sci(SCI_UNDO);
    EXPECT_TRUE(WaitFor([&] { return Marks(editor) == "1[PRINT 1] +2 +3"; })) << Marks(editor);
    editor.Sci(SCI_UNDO);
    EXPECT_EQ(editor.Text(), "!\r\nREM a\r\nPRINT 1\r\nREM b!") << "one step";
    EXPECT_TRUE(WaitFor([&] { return !editor.ButtonShown(IDM_AI_UNDO); })) << "nothing waits any more";
    EXPECT_EQ(Marks(editor), "");
    EXPECT_EQ(editor.Sci(SCI_GETANCHOR), 10);
    EXPECT_EQ(editor.Sci(SCI_GETCURRENTPOS), 17);
    EXPECT_EQ(editor.Status(), L"The AI replacement was undone");
    editor.Sci(SCI_REDO);
    EXPECT_TRUE(WaitFor([&] { return Marks(editor) == "1[PRINT 1] +2 +3"; })) << "it waits again";
    EXPECT_EQ(editor.Status(), L"AI replacement: 2 lines new, 1 removed");
    ExpectMessage(editor, IDM_AI_DO, L"AI replacement accepted.");
    EXPECT_EQ(Marks(editor), "");
    EXPECT_TRUE(WaitFor([&] { return !editor.ButtonShown(IDM_AI_UNDO); }));
    for (const int answer : {IDCANCEL, IDOK}) {
        editor.Post(IDM_AI_APPLY);
        editor.Answer(kProgramTitle, L"The text is no longer as it was sent, so nothing was replaced.", answer);
        EXPECT_EQ(editor.Tabs(), answer == IDOK ? 2 : 1);
    }
    EXPECT_TRUE(WaitFor([&] { return editor.TextOf(editor.main) == L"AI reply - KVXE Editor"; }));
    EXPECT_EQ(editor.Text(), "PRINT 2\r\nEND") << "the code is not lost";
    editor.Post(IDM_FILE_CLOSE);
    editor.Answer(kUnsaved, L"", IDNO);
    ASSERT_TRUE(WaitFor([&] { return editor.Tabs() == 1 && editor.Sci() != nullptr; }));
    EXPECT_EQ(editor.Text(), "!\r\nREM a\r\nPRINT 2\r\nEND\r\nREM b!");
    editor.Sci(SCI_GOTOPOS, 0);
    editor.Sci(SCI_UNDO);
    EXPECT_TRUE(WaitFor([&] { return editor.Sci(SCI_GETANCHOR) == 10; })) << "after it was accepted, too";
    EXPECT_EQ(editor.Sci(SCI_GETCURRENTPOS), 17);
    editor.Sci(SCI_REDO);

    TypeInChat(editor, L"shorter");
    for (const int answer : {IDCANCEL, IDOK}) {  // a whole document: asked before it goes to that server
        editor.Post(IDM_AI_EDIT);
        editor.Answer(kProgramTitle, L"Untitled is about to be sent as a whole to 127.0.0.1:", answer);
        if (answer == IDCANCEL) EXPECT_EQ(editor.Status(), L"Nothing was sent");
    }
    ASSERT_TRUE(WaitFor([&] { return server.Requests().size() == 2; }));
    EXPECT_NE(server.Requests()[1].find("\"model\":\"gpt-4o-mini\""), std::string::npos);
    EXPECT_NE(server.Requests()[1].find(R"("Instruction: shorter\n\nCode:\n!\r\nREM a\r\nPRINT 2\r\nEND\r\nREM b!")"),
              std::string::npos);
    editor.Sci(SCI_SELECTALL);
    editor.Do(IDM_AI_LMSTUDIO);
    EXPECT_TRUE(WaitFor([&] { return server.Requests().size() == 3; })) << "asked once";
}

TEST(Assistant, FailuresAreToldAndSilentServersCancelled) {
    HttpServer server([](const std::string& request) {
        if (request.find("refuse") != std::string::npos)
            return HttpAnswer(401, R"({"error":{"message":"Incorrect key sk-0123456789"}})");
        if (request.find(R"("hello"}],)") != std::string::npos) return HttpAnswer(200, ChatAnswer("hi"));
        return HttpReply{.keepsOpen = true};
    });
    AiFolder folder(true, false, L"sk-0123456789", server.Url(L"/"));
    Editor editor(folder);
    const std::wstring greeting = Chat(editor);
    editor.Foreground();
    const HWND field = editor.Child(IDC_AI_INPUT);
    editor.Do(IDM_AI_EDIT);  // nothing is typed yet
    ExpectMessage(editor, IDM_AI_OPENAI, L"Please select some text in the editor first.");
    EXPECT_TRUE(WaitFor([&] { return editor.Focus() == field; })) << "what is typed on is no text of the document";
    for (const int next : {IDC_AI_SEND, IDC_AI_CHAT, IDC_AI_INPUT}) {
        editor.Send(editor.Focus(), WM_KEYDOWN, VK_TAB);
        EXPECT_EQ(editor.Focus(), editor.Child(next));
    }
    editor.Do(IDM_FILE_NEW);
    EXPECT_TRUE(WaitFor([&] { return editor.Focus() == editor.Sci(); }));
    TypeInChat(editor, L"hello");
    editor.Do(IDC_AI_SEND);
    ASSERT_TRUE(AwaitChat(editor, L"[You]: hello\r\nhi"));
    TypeInChat(editor, L"refuse");
    editor.Do(IDC_AI_SEND);
    EXPECT_TRUE(editor.AwaitOutput(L"[AI Do] No response received."));
    EXPECT_EQ(Count(editor.Output(), L"[AI] Thinking..."), 2) << "the pane is not cleared by the chat";
    EXPECT_TRUE(WaitFor([&] { return editor.Status().find(L"HTTP 401") != std::wstring::npos; }));
    EXPECT_EQ(editor.Status().find(L"sk-0123"), std::wstring::npos) << "the key is nowhere to be read";
    EXPECT_EQ(editor.Log().find(L"sk-0123"), std::wstring::npos);

    TypeInChat(editor, L"wait");
    editor.Do(IDC_AI_SEND);
    ASSERT_TRUE(WaitFor([&] { return server.Requests().size() == 3; }));
    EXPECT_EQ(editor.TextOf(editor.Child(IDC_AI_SEND)), L"Cancel");
    editor.Send(editor.main, WM_COMMAND, IDC_AI_SEND, reinterpret_cast<LPARAM>(editor.Child(IDC_AI_SEND)));
    EXPECT_TRUE(AwaitChat(editor, L"[AI]: Cancelled."));
    EXPECT_EQ(editor.TextOf(editor.Child(IDC_AI_SEND)), L"Send");
    EXPECT_EQ(Chat(editor), greeting +
                                L"[You]: hello\r\nhi\r\n[You]: refuse\r\n[AI]: The request failed: HTTP 401, the API "
                                L"key was not accepted: Incorrect key \r\n[You]: wait\r\n[AI]: Cancelled.\r\n");

    TypeInChat(editor, L"wait");
    editor.Do(IDC_AI_SEND);
    ASSERT_TRUE(WaitFor([&] { return server.Requests().size() == 4; }));
    const ULONGLONG start = GetTickCount64();
    EXPECT_EQ(editor.Close(), 0U);
    EXPECT_LT(GetTickCount64() - start, 5000U) << "nobody waits for a silent server at the end";
}

TEST(Assistant, TheVoiceCommandSaysThatThereIsNoMicrophone) {
    HttpServer server([](const std::string&) { return HttpAnswer(200, R"({"text":"never"})"); });
    AiFolder folder(true, false, L"sk-0123456789", server.Url(L"/"));
    Editor editor(folder, OpenArgument(folder.Write(L"x.bas", "PRINT 1\r\n")));
    editor.Post(IDM_AI_DO);
    if (waveInGetNumDevs() == 0) {
        editor.Answer(kProgramTitle, L"No microphone was found. Connect one, or type the instruction", IDOK);
    } else {  // a machine with one: it records, and Cancel ends it
        const Dialog dialog = editor.AwaitDialog(L"AI Do: Say What to Change");
        EXPECT_NE(dialog.text.find(L"127.0.0.1:"), std::wstring::npos) << "said before anything is recorded";
        editor.Press(dialog, IDCANCEL);
    }
    EXPECT_TRUE(WaitFor([&] { return editor.Dialogs().empty(); })) << editor.Describe();
    EXPECT_TRUE(server.Requests().empty());
    EXPECT_EQ(editor.Text(), "PRINT 1\r\n");
    EXPECT_TRUE(IsWindowEnabled(editor.main));
}

TEST(Assistant, ExplainsAndFixesADiagnostic) {
    HttpServer server(
        [](const std::string&) { return HttpAnswer(200, ChatAnswer("```basic\\nREM a\\nPRINT 2\\nREM b\\n```")); });
    AiFolder folder(false, true, L"", server.Url(L"/"));
    const std::wstring file = folder.File(L"x.bas");
    folder.Write(L"x.bas", "REM a\r\nPRNT 1\r\nREM b");
    folder.FakeCompiler("print " + Utf8(file) + "(1,1): warning: odd\nprint " + Utf8(file) +
                        "(2,1): error: unknown PRNT\nexit 1\n");
    Editor editor(folder, OpenArgument(file) + L" --compiler kvxa64");
    Build(editor);
    editor.Sci(SCI_GRABFOCUS);
    editor.Sci(SCI_GOTOLINE, 1);  // the diagnostic of the caret's line is meant, without a jump to it
    editor.Do(IDM_AI_EXPLAIN);
    ASSERT_TRUE(AwaitChat(editor, L"[You]: Explain this error: x.bas(2): error: unknown PRNT\r\n"));
    ASSERT_TRUE(AwaitChat(editor, L"REM b\r\n```"));
    EXPECT_NE(server.Requests()[0].find(R"(  1: REM a\n> 2: PRNT 1\n  3: REM b\n")"), std::string::npos);
    EXPECT_NE(editor.Output().find(L"unknown PRNT"), std::wstring::npos) << "the diagnostics stay in the pane";
    ExpectMessage(editor, IDM_AI_APPLY, L"No code was sent that the last reply could take the place of.");
    EXPECT_EQ(editor.Text(), "REM a\r\nPRNT 1\r\nREM b") << "an explanation replaces nothing";
    editor.Do(IDM_AI_FIX);
    ASSERT_TRUE(WaitFor([&] { return server.Requests().size() == 2; }));
    EXPECT_NE(server.Requests()[1].find(R"(Code:\nREM a\r\nPRNT 1\r\nREM b")"), std::string::npos);
    ASSERT_TRUE(WaitFor([&] { return Count(Chat(editor), L"PRINT 2") == 2; }));
    ASSERT_TRUE(WaitFor([&] { return editor.Status().starts_with(L"LM-Studio answered"); }));
    ExpectMessage(editor, IDM_AI_APPLY, L"AI replacement applied. Click AI Do again to accept, or AI Undo to revert.");
    EXPECT_EQ(editor.Text(), "REM a\r\nPRINT 2\r\nREM b");
}

struct CharLook {
    COLORREF back;
    bool bold;
};

// How the chat shows the character at which the text stands.
CharLook LookOf(const Editor& editor, std::wstring_view text) {
    std::wstring chat = Chat(editor);
    std::erase(chat, L'\r');  // a line break is one character of the control
    const std::size_t at = chat.find(text);
    const HWND pane = editor.Child(IDC_AI_CHAT);
    editor.Send(pane, EM_SETSEL, at, static_cast<LPARAM>(at + 1));
    CHARFORMAT2W format = {};
    format.cbSize = sizeof(format);
    format = editor.Ask(pane, EM_GETCHARFORMAT, SCF_SELECTION, format);
    return {(format.dwEffects & CFE_AUTOBACKCOLOR) != 0 ? CLR_NONE : format.crBackColor,
            (format.dwEffects & CFE_BOLD) != 0};
}

TEST(Assistant, StreamsIntoTheChatAndHandsOutItsCode) {
    HttpServer server([](const std::string& request) {
        HttpReply reply =
            HttpEvents({"a **b**:\\n```ba", "sic\\nPRINT 1\\n", "PRINT \xC3\xA4\\n```\\nand:\\n```\\nEND\\n```"});
        if (request.find(R"("content":"lost"}],)") != std::string::npos) reply = HttpEvents({"half ", "of it"}, "");
        if (request.find(R"("content":"wait"}],)") != std::string::npos) {
            // Some versions of WinHTTP hand out a chunk only when the next one begins, for which they wait in a call that
            // cancelling does not end.
            reply = {.bytes =
                         "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n39\r\n"
                         R"(data: {"choices":[{"delta":{"content":"only this"}}]})"
                         "  \n\n\r\n4\r\n: \n\n\r\n",
                     .keepsOpen = true};
        } else {
            reply.piece = 40;
            reply.pauseMs = 40;
        }
        return reply;
    });
    AiFolder folder(false, true, L"", server.Url(L"/"));
    folder.SetIni(L"AI", L"ShowAISidebar", L"1");
    folder.Write(L"x.bas", "REM a\nREM b\n");
    Editor editor(folder, OpenArgument(folder.File(L"x.bas")));
    TypeInChat(editor, L"one");
    editor.Do(IDC_AI_SEND);
    EXPECT_TRUE(AwaitChat(editor, L"PRINT 1"));
    EXPECT_EQ(editor.TextOf(editor.Child(IDC_AI_SEND)), L"Cancel") << "the rest is still to come";
    EXPECT_TRUE(editor.Status().starts_with(L"LM-Studio: replying")) << Utf8(editor.Status());
    ASSERT_TRUE(WaitFor([&] { return editor.Status().starts_with(L"LM-Studio answered"); }));
    const std::wstring shown =
        L"[You]: one\r\na **b**:\r\n```basic\r\nPRINT 1\r\nPRINT \xE4\r\n```\r\nand:\r\n```\r\nEND\r\n```";
    EXPECT_TRUE(Chat(editor).ends_with(shown)) << Utf8(Chat(editor));
    EXPECT_TRUE(server.Requests()[0].ends_with(R"("temperature":0.7,"stream":true})"));

    const COLORREF ground = LookOf(editor, L"PRINT 1").back;
    EXPECT_NE(ground, CLR_NONE);
    EXPECT_EQ(LookOf(editor, L"and:").back, CLR_NONE);
    EXPECT_TRUE(LookOf(editor, L"b**:").bold);
    editor.Do(IDM_VIEW_DARK_THEME);
    EXPECT_TRUE(Chat(editor).ends_with(shown));
    EXPECT_NE(LookOf(editor, L"PRINT 1").back, ground) << "the ground of the other theme";
    EXPECT_NE(LookOf(editor, L"PRINT 1").back, CLR_NONE);

    // The last block, or the one at the caret.
    ClipboardEmpty();
    editor.Do(IDM_AI_COPY_CODE);
    EXPECT_EQ(ClipboardText(), L"END");
    editor.Foreground();
    editor.Do(IDM_VIEW_AI);
    editor.Do(IDM_VIEW_AI);
    editor.Click(editor.Child(IDC_AI_CHAT), {20, 10});
    ASSERT_TRUE(WaitFor([&] { return editor.Focus() == editor.Child(IDC_AI_CHAT); }));
    LookOf(editor, L"PRINT \xE4");
    editor.Do(IDM_AI_COPY_CODE);
    EXPECT_EQ(ClipboardText(), L"PRINT 1\r\nPRINT \xE4");
    editor.Sci(SCI_SETSEL, 6, 6);
    editor.Do(IDM_AI_INSERT_CODE);
    EXPECT_EQ(editor.Text(), "REM a\nPRINT 1\nPRINT \xC3\xA4\nREM b\n");
    EXPECT_EQ(editor.Line(), 4);
    editor.Sci(SCI_UNDO);
    EXPECT_EQ(editor.Text(), "REM a\nREM b\n") << "one step";
    EXPECT_FALSE(editor.Modified());
    editor.Sci(SCI_SETREADONLY, 1);
    ExpectMessage(editor, IDM_AI_INSERT_CODE, L"The document is read-only, so nothing was inserted.");

    TypeInChat(editor, L"lost");
    editor.Do(IDC_AI_SEND);
    EXPECT_TRUE(AwaitChat(editor, L"[You]: lost\r\nhalf of it\r\n[AI]: The connection was lost"));
    EXPECT_EQ(LookOf(editor, L"[You]: lost").back, CLR_NONE) << "the code above it has ended";
    EXPECT_NE(server.Requests()[1].find(R"({"role":"user","content":"one"},{"role":"assistant","content":"a **b**:)"),
              std::string::npos);
    TypeInChat(editor, L"wait");
    editor.Do(IDC_AI_SEND);
    EXPECT_TRUE(AwaitChat(editor, L"[You]: wait\r\nonly this"));
    editor.Do(IDM_AI_CANCEL);
    EXPECT_TRUE(AwaitChat(editor, L"only this\r\n[AI]: Cancelled.\r\n"));
    editor.Do(IDM_AI_NEW_CHAT);
    EXPECT_EQ(Chat(editor).find(L"You]"), std::wstring::npos);
    EXPECT_TRUE(Chat(editor).starts_with(L"AI Chat\r\n========\r\n"));
    TypeInChat(editor, L"lost");
    editor.Do(IDC_AI_SEND);
    ASSERT_TRUE(WaitFor([&] { return server.Requests().size() == 4; }));
    EXPECT_EQ(server.Requests()[3].find("assistant\""), std::string::npos) << "a new chat remembers nothing";
    ASSERT_TRUE(AwaitChat(editor, L"[AI]: The connection was lost"));
    ExpectMessage(editor, IDM_AI_APPLY, L"The last reply is not complete");
    TypeInChat(editor, L"wait");
    editor.Do(IDC_AI_SEND);
    EXPECT_TRUE(AwaitChat(editor, L"[You]: wait\r\nonly this"));
    EXPECT_EQ(editor.Close(), 0U);
    EXPECT_EQ(editor.Log().find(L"FAIL"), std::wstring::npos) << "a call that is left is no failure";
}
