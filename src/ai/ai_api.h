// Requests to a chat service, and the texts of an editor that they send. Functions that return int return 1 on success,
// else 0. A text that is returned is a new block of UTF-8 that the caller frees with free().
#pragma once

#include "ai/http.h"
#include "ai/model_list.h"
#include "ai/prompt_settings.h"

#include <windows.h>

#include <string>

// --- Any thread; they block, see http.h. `apiKey`, `model` and `systemPrompt` may be null or empty. `extras` may be
// null; `serviceText` (may be null) gets what the service said about its error.
int AiApiChat(const wchar_t* url, const wchar_t* apiKey, const char* model, const char* systemPrompt,
              const char* message, char** reply, HttpExtras* extras = nullptr, std::string* serviceText = nullptr);
// With the model of the settings and the prompt for the selected compiler.
int AiApiChatCode(const wchar_t* url, const wchar_t* apiKey, const char* message, char** reply,
                  const AiPromptSettings& settings, HttpExtras* extras = nullptr, std::string* serviceText = nullptr);
int AiApiChatLocal(const wchar_t* url, const wchar_t* apiKey, const char* message, char** reply,
                   const AiPromptSettings& settings, HttpExtras* extras = nullptr, std::string* serviceText = nullptr);
// Asks for `baseUrl` with "/models" at its end. `filter`: see ModelListRead.
int AiApiFetchModels(const wchar_t* baseUrl, const wchar_t* apiKey, bool filter, AiModelList* list,
                     HttpExtras* extras = nullptr);

// --- UI thread
AiPromptSettings PromptSettingsNow();
char* BuildSystemPrompt();  // for the settings in force
// Null when nothing is selected, when there is no editor and when memory runs out.
char* AiApiGetSelectedText(HWND editor);
char* AiApiGetFullText(HWND editor);
