// No line map at all.
#include "debuggee.h"

void start(void) { ExitProcess(5); }
