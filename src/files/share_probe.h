// Whether a place on the network answers. A file function on a share that went away takes many seconds; the UI thread
// asks here first, which takes at most a quarter of a second. Any thread.
#pragma once

#include <string>
#include <string_view>

// The root of the share that a path is on, with its backslash: "\\server\share\". Empty for any other path. Pure.
std::wstring ShareRootOf(std::wstring_view path);

// True for a path on a share, or on a drive letter of one. Asks nothing over the network.
bool PathIsRemote(const wchar_t* path);

// False when the path is on a share, or on a drive letter of one, that has not answered in time. A place that does not
// answer is asked again, on another thread, at the first call after half a minute; until it answers the result stays
// false, without a wait.
bool PathAnswers(const wchar_t* path);

// What asks a share; returns when it has answered, whatever the answer. For tests; null restores GetFileAttributesW.
using ShareProbe = void (*)(const wchar_t* root);
void SetShareProbe(ShareProbe probe);
