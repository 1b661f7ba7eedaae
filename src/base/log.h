// The diagnostic log "Editor_Detect.log". The process has one log, which start-up opens and shut-down closes. Only the
// UI thread may write to it, because it has no lock.
#pragma once

// Opens and truncates the log in `directory`, or in the temporary directory when that fails. If both fail, nothing is
// logged.
void OpenLog(const wchar_t* directory);

// Writes a line: local time, the text (at most 4,095 characters), a line break. The stream is flushed. Does nothing
// while no log is open. `%s` means wide text.
void AppLogMsg(const wchar_t* format, ...);

void CloseLog();

// True while a log is open. Lets a caller skip work that is only for a line in the log.
bool LogIsOpen();
