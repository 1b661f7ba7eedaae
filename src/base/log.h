// The diagnostic log "Editor_Detect.log". One stream for the whole process, opened and closed by start-up and
// shut-down, written by the UI thread only: it has no lock, so worker threads must not call it.
#pragma once

// Opens (truncates) the log in `directory`, or in the temporary directory when that fails. With neither, logging is off.
void OpenLog(const wchar_t* directory);

// One line: local time, the text, a line break; flushed at once. Does nothing while no log is open.
// `%s` means wide text.
void AppLogMsg(const wchar_t* format, ...);

void CloseLog();

// True while a log is open: lets a caller skip work that only feeds a log line.
bool LogIsOpen();
