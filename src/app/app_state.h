// The one global record of the program, made of the parts that the folders declare. Other folders do not use g_app, but
// the references to its parts that the parts' headers declare (`g_documents`, for example). UI thread only, except for
// fields whose comment names another thread.
#pragma once

#include "ai/ai_state.h"
#include "commands/commands_state.h"
#include "compile/compile_state.h"
#include "debugger/debug_state.h"
#include "debugui/debugui_state.h"
#include "disasm/disasm_state.h"
#include "documents/documents_state.h"
#include "output/output_state.h"
#include "project/project_state.h"
#include "scintilla/scintilla_library.h"
#include "search/search_state.h"
#include "session/session_state.h"
#include "settings/settings_state.h"
#include "symbols/outline_state.h"
#include "tabs/tabs_state.h"
#include "ui/message.h"
#include "ui/ui_state.h"

struct AppState : SettingsState,
                  UiState,
                  ScintillaState,
                  DocumentsState,
                  TabsState,
                  OutputState,
                  CompileState,
                  DisasmState,
                  DebuggerArea,
                  DebugUiState,
                  ProjectState,
                  SessionState,
                  SearchState,
                  OutlineState,
                  AiState,
                  CommandsState {};

extern AppState g_app;
