#include "ai/ai_commands.h"

#include "ai/ai_api.h"
#include "ai/ai_pane.h"
#include "ai/ai_replace.h"
#include "ai/ai_requests.h"
#include "ai/ai_texts.h"
#include "ai/chat_code.h"
#include "ai/chat_history.h"
#include "ai/chat_log.h"
#include "ai/chat_view.h"
#include "ai/error_question.h"
#include "ai/recording_dialog.h"
#include "ai/send_consent.h"
#include "ai/wav.h"
#include "base/heap_text.h"
#include "base/texts.h"
#include "base/utf8.h"
#include "base/wide_format.h"
#include "compile/build_source.h"
#include "documents/document_row.h"
#include "documents/documents_state.h"
#include "output/output_pane.h"
#include "output/output_state.h"
#include "resources/ids.h"
#include "scintilla/sci.h"
#include "settings/compilers.h"
#include "settings/settings_state.h"
#include "ui/message.h"
#include "ui/panes.h"
#include "ui/ui_state.h"

#include <cstring>
#include <cwchar>

namespace {

constexpr COLORREF kAiProgress = RGB(0, 128, 0);
constexpr COLORREF kAiFailure = RGB(180, 0, 0);
constexpr const wchar_t* kHowToApply =
    English(L"Tools > Apply Code of Last Reply puts the answer in place of %s sent.\n");

const wchar_t* UrlOfService(AiService service) {
    return service == AiService::OpenAi ? g_settings.openAIUrl : g_settings.lmStudioUrl;
}

template <typename Job>
Job JobFor(AiService service) {
    const Settings& settings = g_settings;
    const bool cloud = service == AiService::OpenAi;
    Job job;
    SafeCopyW(job.url, UrlOfService(service));
    SafeCopyW(job.apiKey, cloud ? settings.openAIKey : settings.lmStudioKey);
    job.link = AiLinkNew();
    return job;
}

// Starts a worker. False when there is none; `tag` names the command in the line that tells so, null: no line.
template <auto work, typename Job>
bool StartRequest(AiService service, Job job, AiTarget target, const wchar_t* tag) {
    const AiLink link = job.link;
    const Worker worker = WorkerStart<work>(std::move(job));
    if (worker) {
        AiRequestStarted(service, worker, link, std::move(target));
        return true;
    }
    if (tag != nullptr) OutputPaneAppend(FormatW(Text(L"[%s] Out of memory.\n"), tag).c_str(), kAiFailure);
    return false;
}

bool StartChat(AiService service, HeapBlock<char> message, AiTarget target, const wchar_t* tag,
               std::vector<ChatTurn> earlier = {}) {
    auto job = JobFor<AiChatJob>(service);
    job.cloud = service == AiService::OpenAi ? 1 : 0;
    job.settings = PromptSettingsNow();
    SafeCopyW(job.model, job.cloud != 0 ? job.settings.codeModel : job.settings.localModel);
    job.message = std::move(message);
    job.earlier = std::move(earlier);
    job.link.question = job.message.get();
    if (g_settings.aiStream != 0) job.link.pieces = std::make_shared<AiPieces>();
    return StartRequest<AiWorkerThread>(service, std::move(job), std::move(target), tag);
}

// The reply comes there. The editor keeps the keyboard.
void ShowChat() {
    if (PaneIsShown(PaneId::Ai)) return;
    PaneSetShown(PaneId::Ai, true);
    g_events.layoutWanted();
}

void AskAboutSelection(int command) {
    const AiService service = command == IDM_AI_OPENAI ? AiService::OpenAi : AiService::LmStudio;
    HeapBlock<char> selection(AiApiGetSelectedText(g_documents.hEditor));
    if (const wchar_t* problem = AskProblem(service, g_settings, selection != nullptr); problem != nullptr) {
        InfoMessage(L"%s", problem);
        return;
    }
    AiTarget target = AiTargetNow(false, selection.get());
    if (!SendIsAllowed(UrlOfService(service), target,
                       target.sent.size() + SystemPromptText(PromptSettingsNow()).size()))
        return;
    OutputPaneClear();
    OutputPaneAppend(FormatW(Text(L"[%s] Thinking...\n"), AiServiceName(service)).c_str(), kAiProgress);
    ShowChat();
    StartChat(service, std::move(selection), std::move(target), AiServiceName(service));
}

AskedError AskedErrorOf(const CompilerError& error) {
    const std::wstring_view file(error.file);
    return {.compiler = ToUtf8(g_compilers[error.compilerId < kCompilerCount ? error.compilerId : 0].name),
            .file = ToUtf8(file.substr(file.find_last_of(L"\\/") + 1)),
            .line = error.line,
            .message = ToUtf8(error.message),
            .warning = error.severity != 0};
}

// The lines of the active document around a line (from 0). `sent` is empty when there is no such line.
AiTarget TargetAround(int line, int* firstLine) {
    const HWND editor = g_documents.hEditor;
    const LinesToSend lines =
        LinesAroundError(line, static_cast<int>(SciSend(editor, SCI_GETLINECOUNT)), [editor](int at) {
            return static_cast<std::size_t>(SciSend(editor, SCI_LINELENGTH, static_cast<WPARAM>(at)));
        });
    *firstLine = lines.first + 1;
    AiTarget target = {.document = DocumentOfEditor(editor)};
    target.start = static_cast<std::size_t>(SciSend(editor, SCI_POSITIONFROMLINE, static_cast<WPARAM>(lines.first)));
    target.end = static_cast<std::size_t>(SciSend(editor, SCI_POSITIONFROMLINE, static_cast<WPARAM>(lines.end)));
    const std::size_t length = target.end - target.start;
    if (const auto* bytes = reinterpret_cast<const char*>(
            SciSend(editor, SCI_GETRANGEPOINTER, target.start, static_cast<LPARAM>(length)));
        bytes != nullptr && length > 0)
        target.sent.assign(bytes, length);
    return target;
}

// Explains or corrects the chosen diagnostic. The output pane is not cleared, because the diagnostics stand in it.
void AskAboutError(int command) {
    AiService service = SendService(g_settings);
    if (service == AiService::None) service = g_settings.primaryAi == 0 ? AiService::OpenAi : AiService::LmStudio;
    if (const wchar_t* problem = AskProblem(service, g_settings, true); problem != nullptr) {
        InfoMessage(L"%s", problem);
        return;
    }
    CompilerError error = {};
    if (!CompilerShowChosenError(&error)) return;
    const bool fix = command == IDM_AI_FIX;
    int firstLine = 0;
    AiTarget target = TargetAround(error.line - 1, &firstLine);
    if (fix && target.sent.empty()) {
        InfoMessage(Text(L"The document has no such line, or the line is too long to be sent."));
        return;
    }
    if (fix) target.firstLine = firstLine;
    const AskedError asked = AskedErrorOf(error);
    HeapBlock<char> message(
        HeapText(fix ? FixQuestion(asked, target.sent, firstLine) : ExplainQuestion(asked, target.sent, firstLine)));
    OutputPaneAppend(FormatW(Text(L"[%s] Thinking...\n"), AiServiceName(service)).c_str(), kAiProgress);
    if (fix) OutputPaneAppend(FormatW(Text(kHowToApply), Text(L"the lines")).c_str(), kAiProgress);
    ShowChat();
    AiChatAppend(FormatW(Text(L"[You]: %s this error: %s\r\n"), fix ? Text(L"Fix") : Text(L"Explain"),
                         Utf8ToWideText(AskedErrorLine(asked)).c_str()));
    // An explanation is not to be put in place of the code.
    StartChat(service, std::move(message), fix ? std::move(target) : AiTarget{}, AiServiceName(service));
}

void TellTranscription(int) {
    if (g_settings.aiEnabled == 0)
        InfoMessage(Text(L"AI features are disabled. Enable them in Settings > AI General."));
    else if (g_settings.openAIKey[0] != L'\0')
        InfoMessage(Text(L"Transcription not yet implemented. Model: %s"), g_settings.openAITranscriptionModel);
    else
        InfoMessage(Text(L"OpenAI API key is missing. Set it in Settings > OpenAI."));
}

void SendChat() {
    if (g_ai.hAiChat == nullptr || g_ai.hAiInput == nullptr) return;
    const std::wstring typed = AiInputText();
    if (typed.empty()) return;
    AiChatAppend(FormatW(L"[You]: %s\r\n", typed.c_str()));
    ChatViewScrollToEnd();
    SetWindowTextW(g_ai.hAiInput, L"");
    if (GetFocus() == g_ai.hAiSend) SetFocus(g_ai.hAiInput);  // for the next message
    if (g_settings.openAIEnabled == 0 && g_settings.lmStudioEnabled == 0) {
        AiChatAppend(Text(L"[AI]: AI features are disabled. Enable them in Settings > AI.\r\n"));
        return;
    }
    HeapBlock<char> message(WideToUtf8(typed.c_str()));
    if (message == nullptr) return;
    OutputPaneAppend(Text(L"[AI] Thinking...\n"), kAiProgress);
    const AiService service = SendService(g_settings);
    if (service == AiService::None)
        g_events.statusText(Text(L"No AI service is ready: look at its key and at the primary AI in the settings"));
    else
        StartChat(service, std::move(message), {}, nullptr, ChatHistoryToSend());
}

void SendOrCancel(int) {
    if (AiSendCancels())
        AiRequestsCancel();
    else
        SendChat();
}

// The last error of the selected compiler, when it is to be sent.
std::string LastErrorToSend() {
    const std::vector<CompilerError>& errors = g_output.errors.items;
    const auto last = std::find_if(errors.rbegin(), errors.rend(), [](const auto& e) { return e.severity == 0; });
    if (g_settings.appendLastError == 0 || last == errors.rend() || last->compilerId != CompilerNow()) return {};
    return ToUtf8(FormatW(L"%s(%d): %s", last->file, last->line, last->message));
}

// The typed text in place of a spoken one.
void EditAsTyped(int) {
    const std::wstring instruction = AiInputText();
    if (instruction.empty()) {
        ShowChat();
        AiPaneFocusInput();
        g_events.statusText(Text(L"Type what is to be done with the code, then choose Edit Code as Typed again"));
        return;
    }
    if (AiDoStart(instruction)) SetWindowTextW(g_ai.hAiInput, L"");
}

void ApplyReply(int) {
    const AiLastReply& last = g_ai.aiReply;
    if (const wchar_t* problem = ApplyProblem(last.state, last.target.document != 0); problem != nullptr) {
        InfoMessage(L"%s", problem);
        return;
    }
    const HeapBlock<char> code(AiApiExtractCode(last.text.c_str()));
    if (code == nullptr || code.get()[0] == '\0')
        InfoMessage(Text(L"The last reply holds no code."));
    else
        AiReplace(last.target, code.get());
}

void ShowAiResult(const HeapBlock<char>& reply) {
    if (reply == nullptr || reply.get()[0] == '\0') {
        OutputPaneAppend(Text(L"[AI Do] No response received.\n"), kAiFailure);
        return;
    }
    const HeapBlock<char> code(AiApiExtractCode(reply.get()));
    if (code == nullptr || code.get()[0] == '\0')  // nothing in place of the user's code would be no edit
        OutputPaneAppend(Text(L"[AI Do] Could not extract code from response.\n"), kAiFailure);
    else
        AiReplace(g_ai.aiDoTarget, code.get());
}

// A reply that came piece by piece is there already.
void ShowChatReply(const char* reply) {
    AiTakePieces();
    const int request = ChatViewRequestOf(reply);
    if (request != 0)
        ChatViewPiecesEnd(request);
    else if (!ChatViewReply(reply))
        return OutputPaneAppend(Utf8ToWideText(reply).c_str(), 0);
    if (ChatShownPart(reply).size() == std::strlen(reply) || !AiNewDocument(reply)) return;
    AiChatAppend(L"...\r\n");
    AiChatAppend(Text(L"[AI]: The whole reply is in a new document.\r\n"));
}

// What was said is kept when it was not sent.
void KeepInstruction(const std::wstring& heard) {
    const std::wstring typed = AiInputText();
    ShowChat();
    SetWindowTextW(g_ai.hAiInput, (typed.empty() ? heard : typed + L" " + heard).c_str());
}

// While the user spoke, another document came to the front, or a replacement that waits.
void RefuseInstruction(const std::wstring& heard) {
    KeepInstruction(heard);
    InfoMessage(
        Text(L"The document or its AI replacement has changed while you were speaking, so nothing was sent. Your "
             L"instruction is in the AI sidebar; Tools > Edit Code as Typed in AI Sidebar sends it."));
}

// The instruction is spoken.
void AiDoOrAccept(int) {
    if (g_ai.aiDoPending) return AiReplacementAccept();
    if (const wchar_t* problem = AiDoProblem(g_settings); problem != nullptr) {
        InfoMessage(L"%s", problem);
        return;
    }
    const DocumentId document = ActiveDocumentId();
    const std::wstring heard = RecordingDialogShow(g_ui.hMainWnd);
    if (!IsTranscription(heard)) return;
    if (g_ai.aiDoPending || ActiveDocumentId() != document)
        RefuseInstruction(heard);
    else if (!AiDoStart(heard))
        KeepInstruction(heard);
}

constexpr CommandHandler kAiHandlers[] = {
    {IDM_AI_OPENAI, AskAboutSelection},
    {IDM_AI_LMSTUDIO, AskAboutSelection},
    {IDM_AI_TRANSCRIBE, TellTranscription},
    {IDC_AI_SEND, SendOrCancel},
    {IDM_AI_DO, AiDoOrAccept},
    {IDM_AI_UNDO, [](int) { AiReplacementUndo(); }},
    {IDM_AI_EDIT, EditAsTyped},
    {IDM_AI_APPLY, ApplyReply},
    {IDM_AI_CANCEL, [](int) { AiRequestsCancel(); }},
    {IDM_AI_EXPLAIN, AskAboutError},
    {IDM_AI_FIX, AskAboutError},
    {IDM_AI_COPY_CODE, [](int) { ChatCopyCode(); }},
    {IDM_AI_INSERT_CODE, [](int) { ChatInsertCode(); }},
    {IDM_AI_NEW_CHAT, [](int) { ChatBeginNew(); }},
};

}  // namespace

std::span<const CommandHandler> AiCommandHandlers() { return kAiHandlers; }

bool CmdHandle_AI(int command) { return RunCommandHandler(kAiHandlers, command); }

bool AiDoStart(const std::wstring& instruction) {
    if (const wchar_t* problem = AiDoProblem(g_settings); problem != nullptr) {
        InfoMessage(L"%s", problem);
        return false;
    }
    const HWND editor = g_documents.hEditor;
    if (editor == nullptr) {
        InfoMessage(Text(L"No active editor."));
        return false;
    }
    HeapBlock<char> code(AiApiGetSelectedText(editor));
    if (code == nullptr) code.reset(AiApiGetFullText(editor));
    if (code == nullptr || code.get()[0] == '\0') {
        InfoMessage(Text(L"Editor is empty."));
        return false;
    }
    const std::string system = AiDoSystemPrompt(ToUtf8(PromptSettingsNow().description));
    const std::string message = AiDoMessage(ToUtf8(instruction), LastErrorToSend(), code.get());
    const AiService service = AiDoService(g_settings);
    AiTarget target = AiTargetNow(true, code.get());
    if (!SendIsAllowed(UrlOfService(service), target, message.size() + system.size())) return false;
    OutputPaneClear();
    OutputPaneAppend(Text(L"[AI Do] Sending request...\n"), kAiProgress);
    OutputPaneAppend(FormatW(Text(kHowToApply), Text(L"the code")).c_str(), kAiProgress);
    ShowChat();
    AiChatAppend(L"[You]: " + instruction + L"\r\n");
    auto job = JobFor<AiDoJob>(service);
    job.message.reset(HeapText(message));
    if (!system.empty()) job.systemPrompt.reset(HeapText(system));
    g_ai.aiDoTarget = std::move(target);
    job.editor = editor;
    job.tabId = g_ai.aiDoTarget.document;
    job.selStart = static_cast<std::int64_t>(g_ai.aiDoTarget.start);
    job.selEnd = static_cast<std::int64_t>(g_ai.aiDoTarget.end);
    job.hadSelection = job.selStart != job.selEnd ? 1 : 0;
    return StartRequest<AiDoWorkerThread>(service, std::move(job), g_ai.aiDoTarget, Text(L"AI Do"));
}

void AiOnReply(WPARAM wParam, LPARAM status) {
    const auto reply = WorkerTake<HeapBlock<char>>(wParam);
    switch (AiReplyPathOf(status, reply != nullptr)) {
        case AiReplyPath::Result: ShowAiResult(reply); return;
        case AiReplyPath::Chat: ShowChatReply(reply.get()); break;
        case AiReplyPath::Failure: {
            const std::wstring text = FormatW(Text(L"[AI]: Request failed (HTTP %d).\r\n"), static_cast<int>(status));
            if (!AiChatAppend(text)) OutputPaneAppend(text.c_str(), kAiFailure);
            break;
        }
        case AiReplyPath::Nothing: break;
    }
    if (g_ai.aiDoPending)
        OutputPaneAppend(
            Text(L"The AI replacement is accepted, because another reply has come. Edit > Undo takes it back.\n"),
            kAiProgress);
    AiReplacementForget();
}
