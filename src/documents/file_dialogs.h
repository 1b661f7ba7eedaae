// The system's open and save dialogs with this program's file types. UI thread only.
#pragma once

#include <string>

// `path` is the suggested name (empty: none) and becomes the chosen one. `folder` is where the dialog starts. False when
// the user cancelled, and when the dialog failed, which the user is told.
bool AskOpenPath(std::wstring& path, const wchar_t* folder);
bool AskSavePath(std::wstring& path, const wchar_t* folder);
// Offers to make a folder that is missing. False: it stays missing, and the user knows. True also for a share that does
// not answer.
bool OfferFolder(const std::wstring& folder);
// Makes it, with those above it. False: it cannot be made, and the user knows.
bool MakeFolder(const std::wstring& folder);
