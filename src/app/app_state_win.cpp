// The global record and the references to its parts. They are in one file, so that the record is constructed before the
// references.
#include "app/app_state.h"
#include "settings/settings_state.h"
#include "ui/ui_state.h"

AppState g_app;

Settings& g_settings = g_app.settings;
RunOverrides& g_overrides = g_app.overrides;
WindowPlace& g_windowPlace = g_app.windowPlace;
UiState& g_ui = g_app;
ScintillaLibrary& g_scintilla = g_app.scintilla;
DocumentsState& g_documents = g_app;
TabsState& g_tabs = g_app;
OutputState& g_output = g_app;
CompileState& g_compile = g_app;
BuildState& g_buildState = g_app.build;
DisasmState& g_disasm = g_app;
DebuggerState& g_debugger = g_app.debugger;
DebugFlags& g_debug = g_app.debug;
DebugUiState& g_debugUi = g_app;
ProjectState& g_project = g_app;
SessionState& g_session = g_app;
SearchState& g_search = g_app;
AiState& g_ai = g_app;
CommandsState& g_commands = g_app;
