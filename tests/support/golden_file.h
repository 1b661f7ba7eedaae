// Compares texts with the files in tests/golden.
#pragma once

#include "support/temp_files.h"

#include <gtest/gtest.h>

#include <string>

inline std::string GoldenText(const std::string& name) {
    return ReadBytes(std::string(KVX_TESTS_DIR) + "/golden/" + name);
}

// The files have LF. When the text differs, it is written beside the file, to be inspected and accepted. `file` is
// relative to the folder of the tests.
inline void ExpectFile(const std::string& file, std::string text) {
    std::erase(text, '\r');
    std::string expected = ReadBytes(std::string(KVX_TESTS_DIR) + "/" + file);
    std::erase(expected, '\r');
    if (text == expected) return;
    const std::string path = std::string(KVX_TESTS_DIR) + "/" + file + ".new";
    WriteBytes(path, text);
    ADD_FAILURE() << file << " is not as expected; see " << path;
}
inline void ExpectGolden(const std::string& name, std::string text) { ExpectFile("golden/" + name, std::move(text)); }
