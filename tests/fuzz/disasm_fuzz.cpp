// Any bytes as an executable with a line map, and as a listing. Checks that each byte of the code is shown once and in
// its place, that the text holds no control characters, that slices of any size give the same text, and that a listing
// loses no character but blanks.
#include "disasm/disasm.h"
#include "disasm/listing_text.h"
#include "disasm/renderer.h"
#include "files/text_encoding.h"
#include "program/visible_text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

void Require(bool condition) {
    if (!condition) std::abort();
}

void CheckText(const std::string& text) {
    Require(IsValidUtf8Bytes(text.data(), text.size()));
    Require(text.empty() || text.ends_with("\r\n"));
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        Require((byte >= 0x20 && byte != 0x7F) || byte == '\r' || byte == '\n');
        Require(byte != '\r' || text[i + 1] == '\n');
    }
}

// Reads one line of code: its address, and the address that the next line must have. False: it is another line.
bool ParseCode(std::string_view line, std::uint64_t* address, std::uint64_t* next) {
    if (!line.starts_with("  ")) return false;
    char* end = nullptr;
    *address = std::strtoull(std::string(line).c_str(), &end, 16);
    std::size_t at = line.find_first_of(' ', 2);
    if (at == std::string_view::npos) return false;
    at += 2;
    std::uint64_t bytes = 0;
    for (; at + 2 < line.size() && line[at] != ' '; at += 3) {
        if (line[at + 2] != ' ' || line.substr(at, 2).find_first_not_of("0123456789ABCDEF") != std::string_view::npos)
            break;
        ++bytes;
    }
    const std::size_t run = line.find(" dup (");
    const std::size_t db = line.rfind("db ", run);
    if (run != std::string_view::npos && db != std::string_view::npos)
        bytes = std::strtoull(std::string(line.substr(db + 3)).c_str(), &end, 10);
    *next = *address + bytes;
    return true;
}

void CheckCode(const std::string& text) {
    std::string_view rest = text;
    std::uint64_t expected = 0;
    bool started = false;
    while (!rest.empty()) {
        const std::size_t end = rest.find("\r\n");
        const std::string_view line = rest.substr(0, end);
        rest.remove_prefix(end + 2);
        if (line.starts_with("; --- ")) started = false;
        std::uint64_t address = 0;
        std::uint64_t next = 0;
        if (!ParseCode(line, &address, &next)) continue;
        Require(!started || address == expected);
        Require(next != address);
        expected = next;
        started = true;
    }
}

std::string Rendered(const DisasmProgram& program, std::size_t budget) {
    const DisasmRendererPtr renderer = DisasmRendererNew(program);
    std::string text;
    while (DisasmRenderNext(*renderer, budget, &text)) {}
    return text;
}

void FuzzProgram(std::uint8_t seed, const Bytes& bytes) {
    DisasmProgram program;
    program.file = bytes;
    // Makes the map from the same bytes.
    for (std::size_t i = 0; i + 2 < bytes.size() && program.lines.size() < 64; i += 97)
        program.lines.push_back({.rva = 0x1000U + bytes[i], .fileId = bytes[i + 1] % 3U, .line = bytes[i + 2] % 8U});
    program.sources = {{1, "", {bytes.begin(), bytes.end()}}, {2, {bytes.begin(), bytes.end()}, "SUB a\nb"}};
    program.focusFile = seed % 3U;
    program.focusLine = seed % 9U;
    const std::string text = Rendered(program, 1000);
    CheckText(text);
    CheckCode(text);
    Require(Rendered(program, 1U + seed % 5U) == text);
    for (const bool x64 : {false, true}) {
        const auto code = DisasmRange(bytes, seed * 0x0101010101010101U, x64, {}, 64);
        std::size_t length = 0;
        for (const DisasmInstruction& one : code) length += one.length;
        Require(length <= bytes.size() && (code.size() == 64 || length == bytes.size()));
        DisasmCallTarget(bytes, seed, x64);
    }
}

std::string WithoutBlanks(std::string text) {
    std::erase(text, ' ');
    return text;
}

void FuzzListing(std::uint8_t seed, std::string_view text) {
    std::string all;
    DisasmListing listing = {.rest = text};
    while (DisasmListingNext(listing, 1U + seed, &all)) {}
    CheckText(all);
    std::string expected;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
        expected += WithoutBlanks(VisibleText(text.substr(0, end), 8)) + "\r\n";
        text.remove_prefix(std::min(end + (text.substr(end).starts_with("\r\n") ? 2U : 1U), text.size()));
    }
    Require(WithoutBlanks(all) == expected);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const Bytes bytes(data + 1, data + size);
    if (bytes[0] == 'M')
        FuzzProgram(data[0], bytes);
    else
        FuzzListing(data[0], {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    return 0;
}
