// Compares texts with the files in tests/golden.
#pragma once

#include "support/temp_files.h"

#include <gtest/gtest.h>

#include <string>

inline std::string GoldenText(const std::string& name) {
    return ReadBytes(std::string(KVX_TESTS_DIR) + "/golden/" + name);
}

// The files have LF. When the text differs, it is written beside the file, to be inspected and accepted.
inline void ExpectGolden(const std::string& name, std::string text) {
    std::erase(text, '\r');
    std::string expected = GoldenText(name);
    std::erase(expected, '\r');
    if (text == expected) return;
    const std::string path = std::string(KVX_TESTS_DIR) + "/golden/" + name + ".new";
    WriteBytes(path, text);
    ADD_FAILURE() << name << " is not as expected; see " << path;
}
