// For the small programs that the debugger's tests run. There is no C runtime: execution begins in `start` and ends
// with ExitProcess. A program brings its own line map: AT(n) says that the code from here on is line n of its .bas
// file. Functions must stand in the order of their addresses, because the map ascends; the first AT of a program is the
// first that runs.
#pragma once

#include <windows.h>

// Version 2 of the map for 64-bit programs and those of several files, version 1 for the other 32-bit ones.
#if defined(_WIN64) || defined(SEVERAL_FILES)
#define MAP_MAGIC "SDB2"
#define MAP_RECORD_SIZE "12"
#define MAP_RECORD(file, line) ".long " #file ", " #line "\n"
#else
#define MAP_MAGIC "SDBG"
#define MAP_RECORD_SIZE "6"
#define MAP_RECORD(file, line) ".short " #line "\n"
#endif

// A record without code, for use within other assembly.
#define RECORD(file, line) ".section .sdbg, \"dr\"\n" MAP_RECORD(file, line) ".rva 77f\n.text\n77:\n"
#define AT_FILE(file, line) __asm__ volatile(RECORD(file, line)::: "memory")
#define AT(line) AT_FILE(1, line)

// Every program begins with MAP_BEGIN and ends with MAP_END, or MAP_END_FILES(the file table's bytes).
// clang-format off
#define MAP_BEGIN                                                \
    __asm__(".section .sdbg, \"dr\"\n"                          \
            ".ascii \"" MAP_MAGIC "\"\n"                        \
            ".long (map_end - map_records) / " MAP_RECORD_SIZE "\n" \
            "map_records:\n.text\n");
// clang-format on
#define MAP_END_FILES(table) __asm__(".section .sdbg, \"dr\"\nmap_end:\n" table ".text\n");
#define MAP_END MAP_END_FILES("")
#define MAP_FILE(id, name) ".long " #id ", 8f - 7f\n7: .ascii \"" name "\"\n8:\n"

#ifdef _WIN64
#define SYMBOL(name) #name
#define FRAME_POINTER "%rbp"
#else
#define SYMBOL(name) "_" #name
#define FRAME_POINTER "%ebp"
#endif
// AT(line) with `value` in RCX (ECX) for the instruction that follows.
#define AT_WITH_COUNT(line, value) \
    __asm__ volatile("mov %0, %%ecx\n" RECORD(1, line) "nop\n" ::"r"(value) : "ecx", "memory")

void __attribute__((noreturn)) start(void);
