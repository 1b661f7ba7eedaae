// The open project: what its file (project_file.h) says, given to builds, searches and symbols. UI thread only.
#pragma once

#include "base/command_handler.h"
#include "base/events.h"
#include "files/ignore_rules.h"

#include <windows.h>

#include <span>
#include <string>
#include <string_view>
#include <vector>

// Opens a project file for the user. False after the user was told why not; the project before stays open then.
bool ProjectOpenFile(const wchar_t* path);
// At the end of start-up: opens the project of the settings, unless one was opened already.
void ProjectRestore();
void ProjectClose();
// Reads the open project's file again after another value of it was written; see project_file.h for section and key. False
// after the user was told why it could not be written.
bool ProjectChangeFile(std::string_view section, std::string_view key, std::wstring_view value);

// After a file or folder got another path: the project stays open when its own file did, and a main source that moved is
// written into it, which is told.
void ProjectFollowRename(const std::wstring& from, const std::wstring& to);

const std::wstring& ProjectFilePath();  // empty: no project is open
const std::wstring& ProjectName();
const std::wstring& ProjectRoot();  // absolute, with a backslash at its end; empty when the file could not be read yet

// Whether a file or folder is in a folder that the project leaves out, or is one.
bool ProjectExcludes(const std::wstring& path, bool isFolder = true);
const ExcludedFolders& ProjectExcludedFolders();  // for a walk over folders
// Puts the project's include folders before those of the settings, for a document that belongs to the project.
void ProjectAddIncludeFolders(const wchar_t* document, std::vector<std::wstring>* folders);

// Settings that were reset or imported do not close the open project.
void ProjectOnSettings();
void ProjectOnSaved(DocumentId document);
void ProjectOnSeen(WPARAM sight);  // MSG_PROJECT_SEEN
void ProjectShutdown(HWND window);

std::span<const CommandHandler> ProjectCommandHandlers();
