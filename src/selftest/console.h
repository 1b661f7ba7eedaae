// Where the self-test writes: the console that started the program, a pipe or a file, and a log.
#pragma once

#include <string_view>

// A windowed program has no console: takes the one of the process that started it. Also opens "SelfTest.log" in the
// user's folder. Once a process.
void SelfTestOpenConsole();
void SelfTestPrint(std::string_view utf8);
