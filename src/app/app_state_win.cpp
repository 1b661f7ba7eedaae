// The one instance of the global record.
#include "app/app_state.h"

AppState g_app;
bool g_selftestTabsMode = false;
