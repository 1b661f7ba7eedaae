// The commands that resume a stopped program by a step, and what they say when there is no step. UI thread only.
#pragma once

// Follows a program that a command has resumed, or says why it has not. `suffix` is written after the place of the stop.
void DebugFollowResumed(bool resumed, const wchar_t* suffix);

// Handlers (base/command_handler.h). Steps follow the program, or the order of addresses, as the setting says.
void CommandStepOver(int);
void CommandStepInto(int);
void CommandStepOut(int);
void CommandStepInstruction(int);
void CommandStepOverInstruction(int);
void CommandSetNextStatement(int);
void CommandStepsFollowProgram(int);  // changes the setting

// Resumes the program until it comes to a line (again). False: no code there, or no room for a breakpoint.
bool DebugRunToCaret(unsigned fileId, int line);
// Moves the next statement to an address of the program and shows the stop there; says so when that is not possible.
void DebugMoveNextStatement(unsigned long long address);
bool IsBreakpointTableFull();
