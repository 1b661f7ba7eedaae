// Has no line map.
#include "debuggee.h"

void start(void) { ExitProcess(5); }
