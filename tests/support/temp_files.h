// Files for tests: a folder of its own for each, whole files read and written.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <system_error>

// A new empty folder, removed with everything in it at the end.
struct TempFolder {
    std::filesystem::path path;

    TempFolder() {
        // Random, because runs in several Wine prefixes have equal process ids and one folder for such files.
        static const std::string run = "kvx-test-" + std::to_string(std::random_device{}()) + "-";
        static int count = 0;
        path = std::filesystem::temp_directory_path() / (run + std::to_string(++count));
        std::filesystem::create_directories(path);
    }
    ~TempFolder() {
        std::error_code ignored;  // a program that still runs keeps its file; nothing depends on the removal
        std::filesystem::remove_all(path, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
};

// Empty when the file cannot be read.
inline std::string ReadBytes(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void WriteBytes(const std::filesystem::path& path, std::string_view bytes) {
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}
