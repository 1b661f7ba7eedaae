// The modules' checks. Private to this folder; the checks' thread.
#pragma once

#include <string_view>

namespace selftest {

// Runs the checks of the module with that name (selftest/modules.h).
void RunCheckModule(std::string_view name);

void CheckMouse();
void CheckTabs();
void CheckEditing();
void CheckToolbar();
void CheckPanes();
void CheckFiles();
void CheckCompilers();
void CheckKeldorSteps();
void CheckKvxb64Steps();
void CheckExit();

// Builds the active document and waits for the end. True when the output says that it has succeeded. Also used by the
// editing module.
bool BuildSucceeds();
// The compiler's number by its command name, as "kvxb64"; whether it is installed.
bool CompilerIsInstalled(unsigned id);

}  // namespace selftest
