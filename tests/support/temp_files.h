// Files for tests: temporary folders, and functions that read and write whole files.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <system_error>

// A new empty folder. The destructor removes it with its contents.
struct TempFolder {
    std::filesystem::path path;

    TempFolder() {
        // The name is random, because runs in several Wine prefixes have equal process ids and share the folder for
        // temporary files.
        static const std::string run = "kvx-test-" + std::to_string(std::random_device{}()) + "-";
        static int count = 0;
        path = std::filesystem::temp_directory_path() / (run + std::to_string(++count));
        std::filesystem::create_directories(path);
    }
    ~TempFolder() {
        std::error_code ignored;  // a running program keeps its file; nothing depends on the removal
        std::filesystem::remove_all(path, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
};

// Returns the bytes of a file; empty when it cannot be read.
inline std::string ReadBytes(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void WriteBytes(const std::filesystem::path& path, std::string_view bytes) {
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}
