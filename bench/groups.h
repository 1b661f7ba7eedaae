// The groups of measurements. Each runs in a process of its own, so that one that fails, hangs or loses a program is ended
// with all that it has started, and is tried again.
#pragma once

#include "results.h"

#include <span>
#include <string>
#include <string_view>

struct Group {
    const char* name;  // on the command line
    const char* title;
    void (*measure)();
};
std::span<const Group> Groups();
const Group* GroupOf(std::string_view name);

// In the process of the group: measures it and writes its rows to the file.
int RunGroupHere(const Group& group, const std::wstring& rowsFile);

// Measures a group in a process of its own, at most three times until it works, and adds its rows. False when none did
// within `limitMs`.
bool RunGroup(const Group& group, double limitMs, Results* results);

std::string ReadText(const std::wstring& path);  // empty when it cannot be read
