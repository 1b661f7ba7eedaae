// Expected texts that are files, in tests/golden.
#pragma once

#include "support/temp_files.h"

#include <gtest/gtest.h>

#include <string>

inline std::string GoldenText(const std::string& name) {
    return ReadBytes(std::string(KVX_TESTS_DIR) + "/golden/" + name);
}

// The files have LF; what is found instead is left beside a file that differs, to be looked at and taken.
inline void ExpectGolden(const std::string& name, std::string text) {
    std::erase(text, '\r');
    std::string expected = GoldenText(name);
    std::erase(expected, '\r');
    if (text == expected) return;
    const std::string path = std::string(KVX_TESTS_DIR) + "/golden/" + name + ".new";
    WriteBytes(path, text);
    ADD_FAILURE() << name << " is not as expected; see " << path;
}
