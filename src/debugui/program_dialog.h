// The dialog for the arguments and the folder of a program that is debugged or run. Modal, UI thread only.
#pragma once

#include <windows.h>

// Asks for them and saves them with the settings.
void AskProgramArguments(HWND owner);
