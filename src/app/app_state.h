// The one global record of the program, put together from the parts that the areas declare, so that it can be read as a
// table of contents. An area to the left of this one sees its own part and those before it, by the references that the
// parts' headers declare. Owned by the UI thread; a field that another thread may touch says so.
#pragma once

#include "ai/ai_state.h"
#include "commands/commands_state.h"
#include "compile/compile_state.h"
#include "debugger/debug_state.h"
#include "debugui/debugui_state.h"
#include "disasm/disasm_state.h"
#include "documents/documents_state.h"
#include "output/output_state.h"
#include "scintilla/scintilla_library.h"
#include "search/search_state.h"
#include "session/session_state.h"
#include "settings/settings_state.h"
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
                  SessionState,
                  SearchState,
                  AiState,
                  CommandsState {};

extern AppState g_app;
