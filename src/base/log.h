// The diagnostic log "Editor_Detect.log". The process has one log, which start-up opens and shut-down closes. Only the
// UI thread may write to it, because it has no lock.
#pragma once

#include <cstdint>

// The log's file holds at most this many bytes and one line. A full one becomes "Editor_Detect.old.log", in the place
// of an older one, and the log goes on in an empty file.
inline constexpr std::int64_t kLogLimit = 4 * 1024 * 1024;

// Opens and truncates the log in `directory`, or in the temporary directory when that fails. If both fail, nothing is
// logged.
void OpenLog(const wchar_t* directory);

// Writes a line: local time, the text (at most 4,095 characters), a line break. Does nothing while no log is open. `%s`
// means wide text. The line reaches the file after at most a second, a line that begins with "FAIL" at once.
void AppLogMsg(const wchar_t* format, ...);

// Writes what is still in memory to the file. For callers that are about to do something that may end the process.
void LogFlush();

void CloseLog();

// True while a log is open. Lets a caller skip work that is only for a line in the log.
bool LogIsOpen();
