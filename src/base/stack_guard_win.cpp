// The check that a procedure has not written over its return address: the compiler puts a secret number below it
// (-fstack-protector-strong) and looks at it before the return. The toolchain's library for it would load the system's
// encryption with nine more DLLs at each start. Any thread.
#include <windows.h>

#include <cstdint>

extern "C" {  // the names are the compiler's

[[noreturn]] void __stack_chk_fail();

std::uintptr_t __stack_chk_guard = 0x9E3779B97F4A7C00;

// Ends the process at once, because nothing on the stack can be trusted any more.
void __stack_chk_fail() {
    constexpr unsigned kStackCookieFailure = 2;  // FAST_FAIL_STACK_COOKIE_CHECK_FAILURE
    asm volatile("int $0x29" : : "c"(kStackCookieFailure));
    __builtin_unreachable();
}
}

// Runs before every other constructor of the program. What goes into the number differs from start to start and is not
// known outside: counters, and where the system has put program and stack.
__attribute__((constructor(101), no_stack_protector)) static void InitStackGuard() {
    LARGE_INTEGER counter = {};
    QueryPerformanceCounter(&counter);
    std::uintptr_t number = __builtin_ia32_rdtsc() ^ static_cast<std::uintptr_t>(counter.QuadPart) << 20 ^
                            reinterpret_cast<std::uintptr_t>(&counter) << 7 ^
                            reinterpret_cast<std::uintptr_t>(&__stack_chk_guard) << 16 ^
                            std::uintptr_t{GetCurrentProcessId()} << 40;
    number *= 0x9E3779B97F4A7C15;  // spreads the few bits that differ over all
    // A terminator as the lowest byte stops functions on text before they copy the number.
    __stack_chk_guard = (number ^ number >> 29) & ~std::uintptr_t{0xFF};
}
