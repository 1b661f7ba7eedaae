#include "disasm/pe_problem.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace {

using Bytes = std::span<const std::uint8_t>;

// Facts about all code sections together.
struct CodeFacts {
    bool any = false;      // there is a code section
    bool data = false;     // there is one with data
    bool outside = false;  // there is one whose data are outside the file
};

CodeFacts FactsOf(const PeImage& image) {
    CodeFacts facts;
    for (const PeSection& section : image.sections) {
        if (!section.isCode) continue;
        facts.any = true;
        facts.data = facts.data || !section.data.empty();
        facts.outside = facts.outside || section.outsideFile;
    }
    return facts;
}

std::string PackerSection(const PeImage& image) {
    constexpr std::array<std::string_view, 22> names = {
        "UPX0",    "UPX1",     "UPX2",     ".aspack",  ".adata", ".ASPack", "MPRESS1", "MPRESS2",
        ".petite", ".MPRESS1", ".nsp0",    ".nsp1",    "PEC2",   "pec1",    "FSG!",    ".vmp0",
        ".vmp1",   ".themida", ".winlice", ".enigma1", ".yP",    "kkrunchy"};
    for (const PeSection& section : image.sections)
        if (std::find(names.begin(), names.end(), section.name) != names.end()) return section.name;
    return {};
}

// Entropy in bits per byte, 0 to 8. Compiled code has 5 to 6.7; compressed and encrypted data have more than 7.8.
double Entropy(Bytes bytes) {
    std::array<std::size_t, 256> counts = {};
    for (const std::uint8_t byte : bytes) ++counts[byte];
    double sum = 0;
    for (const std::size_t count : counts) {
        if (count == 0) continue;
        const double share = static_cast<double>(count) / static_cast<double>(bytes.size());
        sum -= share * std::log2(share);
    }
    return sum;
}

constexpr double kPackedEntropy = 7.3;
constexpr std::size_t kEntropyBytes = 4096;  // the entropy of fewer bytes is not meaningful

std::string Quoted(const std::string& name) { return '"' + name + '"'; }

std::string PackedProblem(const PeImage& image) {
    if (const std::string packer = PackerSection(image); !packer.empty())
        return "The program is packed (section " + Quoted(packer) + "): its code is not in the file as it runs.";
    const PeSection* entry = PeSectionAt(image, image.entryRva);
    for (const PeSection& section : image.sections) {
        const bool decides = image.entryRva != 0 ? &section == entry : section.isCode;
        if (decides && section.data.size() >= kEntropyBytes && Entropy(section.data) > kPackedEntropy)
            return "The program is packed or encrypted (section " + Quoted(section.name) +
                   " looks like random data): its code is not in the file as it runs.";
    }
    return {};
}

std::string MachineName(std::uint16_t machine) {
    switch (machine) {
        case 0x1C0:
        case 0x1C2:
        case 0x1C4: return "ARM";
        case 0xAA64: return "ARM64";
        case 0xA641: return "ARM64EC";
        case 0x200: return "Itanium";
        case 0xEBC: return "EFI byte code";
        default: return "an unknown machine";
    }
}

std::string HeaderProblem(const PeImage& image) {
    if (image.file.empty()) return "The file is empty.";
    if (image.machine == 0) {
        const bool dos = image.file.size() >= 2 && image.file[0] == 'M' && image.file[1] == 'Z';
        return dos ? "The file is no Windows program, or its header is damaged." : "The file is no program.";
    }
    if (image.machine != kMachineX86 && image.machine != kMachineX64)
        return "The program is for " + MachineName(image.machine) + ", and only x86 and x64 code can be shown.";
    if ((image.machine == kMachineX64) != image.x64) return "The file is damaged: its header contradicts itself.";
    if (image.isDotNet) return "The program is made for .NET: it holds no machine code.";
    return {};
}

}  // namespace

std::string PeProblem(const PeImage& image) {
    if (std::string header = HeaderProblem(image); !header.empty()) return header;
    const CodeFacts facts = FactsOf(image);
    if (!facts.any) return "The program has no section with code.";
    if (facts.outside) return "The file is damaged or cut off: its code lies outside the file.";
    if (std::string packed = PackedProblem(image); !packed.empty()) return packed;
    if (!facts.data) return "The program's code is not in the file: it is made when the program runs.";
    if (image.entryRva != 0 && PeSectionAt(image, image.entryRva) == nullptr)
        return "The file is damaged: the program's entry point lies outside its sections.";
    return {};
}
