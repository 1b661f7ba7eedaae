// The system's words for an error. Any thread.
#pragma once

#include <cstdint>
#include <string>

// The message of an error number (GetLastError) without line breaks; empty when the system has none.
std::wstring SystemErrorText(std::uint32_t error);
