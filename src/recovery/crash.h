// What is left of a crash: a report and a minidump in the user's folder "Crashes", and the unsaved text. UI thread only.
#pragma once

#include <string>

// Called once. From now on a fault that nobody handles writes both before the process ends. The dump holds no text of documents: of
// memory it has only what the stacks need to be walked.
void CrashWatch();

// The path of the report about a crash of the last run; empty when there was none, and from the second call on. Removes
// all but the latest reports.
std::wstring CrashReportTake();
// What the user is told about it: in a box, or in one line or two of a dialog.
std::wstring CrashNotice(const std::wstring& report);
std::wstring CrashNoticeShort(const std::wstring& report);
