#include "ai/ai_api.h"

#include "ai/ai_texts.h"
#include "ai/chat_protocol.h"
#include "base/bounded_text.h"
#include "base/heap_text.h"
#include "base/utf8.h"
#include "compile/build_source.h"
#include "editor/editor_pane.h"
#include "scintilla/sci.h"
#include "settings/compiler_id.h"
#include "settings/settings_state.h"

#include <algorithm>

int AiApiChat(const wchar_t* url, const wchar_t* apiKey, const char* model, const char* systemPrompt,
              const char* message, char** reply, HttpExtras* extras, std::string* serviceText) {
    if (url == nullptr || message == nullptr || reply == nullptr) return 0;
    *reply = nullptr;
    const std::string request = ChatRequestJson(model, systemPrompt, message);
    if (request.empty()) return 0;
    HttpResponseBuffer buffer;
    const int sent = WinHttpPost(url, ChatHeaders(apiKey).c_str(), request.c_str(), &buffer, extras);
    const HeapBlock<char> body(buffer.data);
    if (sent == 0) return 0;
    *reply = ChatReplyText(body.get());
    if (*reply == nullptr && serviceText != nullptr) *serviceText = ChatErrorText(body.get());
    return *reply != nullptr ? 1 : 0;
}

int AiApiChatCode(const wchar_t* url, const wchar_t* apiKey, const char* message, char** reply,
                  const AiPromptSettings& settings, HttpExtras* extras, std::string* serviceText) {
    return AiApiChat(url, apiKey, ToUtf8(settings.codeModel).c_str(), SystemPromptText(settings).c_str(), message,
                     reply, extras, serviceText);
}

int AiApiChatLocal(const wchar_t* url, const wchar_t* apiKey, const char* message, char** reply,
                   const AiPromptSettings& settings, HttpExtras* extras, std::string* serviceText) {
    return AiApiChat(url, apiKey, ToUtf8(settings.localModel).c_str(), SystemPromptText(settings).c_str(), message,
                     reply, extras, serviceText);
}

int AiApiFetchModels(const wchar_t* baseUrl, const wchar_t* apiKey, bool filter, AiModelList* list,
                     HttpExtras* extras) {
    if (baseUrl == nullptr || list == nullptr) return 0;
    *list = {};
    wchar_t url[kPathCapacity] = {};
    SafeCopyW(url, baseUrl);
    SafeCatW(url, L"/models");
    const std::wstring headers = ModelListHeaders(apiKey);
    HttpResponseBuffer buffer;
    const int fetched = WinHttpGet(url, headers.empty() ? nullptr : headers.c_str(), &buffer, extras);
    const HeapBlock<char> body(buffer.data);
    return fetched != 0 ? ModelListRead(body.get(), filter, list) : 0;
}

AiPromptSettings PromptSettingsNow() {
    const std::uint32_t compiler = CompilerNow();
    return {.codeModel = g_settings.openAICodeModel,
            .localModel = g_settings.lmStudioModel,
            .compiler = compiler,
            .description = g_settings.compilers[compiler < kCompilerCount ? compiler : 0].description};
}

char* BuildSystemPrompt() { return HeapText(SystemPromptText(PromptSettingsNow())); }

char* AiApiGetSelectedText(HWND editor) {
    const LRESULT start = SciSend(editor, SCI_GETSELECTIONSTART);
    const LRESULT end = SciSend(editor, SCI_GETSELECTIONEND);
    if (start == end) return nullptr;
    // A selection of several pieces is longer than the range of its main piece.
    const LRESULT length = std::max(end - start, SciSend(editor, SCI_GETSELTEXT)) + 1;
    char* text = static_cast<char*>(std::calloc(static_cast<std::size_t>(length), 1));
    if (text != nullptr) SciSend(editor, SCI_GETSELTEXT, 0, reinterpret_cast<LPARAM>(text));
    return text;
}

char* AiApiGetFullText(HWND editor) { return editor != nullptr ? EditorPaneGetText(editor, nullptr) : nullptr; }
