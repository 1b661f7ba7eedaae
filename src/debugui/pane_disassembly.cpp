// Instructions around an address. Pure.
#include "debugui/pane_disassembly.h"

#include "debugui/pane_rows.h"

#include <algorithm>

namespace {

constexpr std::size_t kShownBytes = 6;
constexpr std::uint64_t kBytesBefore = 400;
constexpr std::size_t kBytesRead = kBytesBefore + kInstructionsShown * kLongestInstruction;

// The instructions from `start` up to the target; none when one of them crosses the target.
std::vector<DisasmInstruction> LeadingTo(std::span<const std::uint8_t> bytes, std::uint64_t address,
                                         std::uint64_t start, std::uint64_t target, bool x64,
                                         const DisasmSymbols& symbols) {
    const auto from = static_cast<std::size_t>(start - address);
    const auto length = static_cast<std::size_t>(target - start);
    // Decodes beyond the target, because an instruction across it would otherwise be cut short and end at it.
    const std::size_t available = std::min(length + kLongestInstruction, bytes.size() - from);
    std::vector<DisasmInstruction> found = DisasmRange(bytes.subspan(from, available), start, x64, symbols, length + 1);
    const auto end = std::ranges::find_if(found, [&](const auto& each) { return each.address >= target; });
    const bool lands = end != found.end() && end->address == target;
    found.erase(lands ? end : found.begin(), found.end());
    return found;
}

bool AllDecoded(const std::vector<DisasmInstruction>& list) {
    return std::ranges::all_of(list, &DisasmInstruction::decoded);
}

std::vector<DisasmInstruction> Before(std::span<const std::uint8_t> bytes, std::uint64_t address, std::uint64_t target,
                                      bool x64, std::span<const std::uint64_t> lineStarts,
                                      const DisasmSymbols& symbols) {
    for (const std::uint64_t start : lineStarts) {
        if (start < address || start >= target) continue;
        auto found = LeadingTo(bytes, address, start, target, x64, symbols);
        if (!found.empty()) return found;
    }
    // From any start, decoding meets the true instructions after a few. A start that needs no "db" is likely a true
    // one.
    const std::uint64_t last = std::min(target, address + 2 * kLongestInstruction);
    for (std::uint64_t start = address; start < last; ++start) {
        auto found = LeadingTo(bytes, address, start, target, x64, symbols);
        if (!found.empty() && AllDecoded(found)) return found;
    }
    return {};
}

ListRow SourceRow(const CodeView::Place& place, const CodeView& view) {
    ListRow row;
    row.tone = ListTone::Source;
    row.cells = {std::to_wstring(place.line) + L": " + view.sourceLine(place.fileId, place.line), L"", L""};
    return row;
}

std::wstring InstructionText(const DisasmInstruction& instruction, const CodeView& view) {
    std::wstring text(instruction.text.begin(), instruction.text.end());
    if (!instruction.isBranch) return text;
    const std::wstring target = view.placeText(instruction.target);
    return target.empty() ? text : text + L"  ; " + target;
}

ListRow InstructionRow(const CodeBytes& code, const DisasmInstruction& instruction, const CodeView& view) {
    const auto bytes = std::span(code.bytes).subspan(static_cast<std::size_t>(instruction.address - code.address));
    ListRow row;
    row.cells = {HexText(instruction.address, PaneAddressDigits(view.x64, instruction.address)),
                 CodeBytesText(bytes.first(std::min<std::size_t>(instruction.length, bytes.size()))),
                 InstructionText(instruction, view)};
    const bool current = instruction.address == view.current;
    if (view.hasBreakpoint(instruction.address))
        row.mark = current ? ListMark::CurrentBreakpoint : ListMark::Breakpoint;
    else if (current)
        row.mark = ListMark::Current;
    return row;
}

}  // namespace

CodeBytes ReadCodeAround(std::uint64_t target, const CodeReader& readSome) {
    const std::uint64_t wanted = target - std::min(target, kBytesBefore);
    const std::uint64_t page = target & ~std::uint64_t{0xFFF};
    for (const std::uint64_t start : {wanted, std::max(wanted, page), target}) {
        CodeBytes code{start, std::vector<std::uint8_t>(kBytesRead)};
        code.bytes.resize(readSome(start, code.bytes.data(), code.bytes.size()));
        if (code.bytes.size() > target - start) return code;
    }
    return {};
}

std::string FramePlaceOf(std::string_view instruction) {
    const std::size_t open = instruction.find('[');
    const std::size_t close = instruction.find(']', open);
    if (close == std::string_view::npos) return {};
    const std::string_view place = instruction.substr(open + 1, close - open - 1);
    const bool ofFrame = place.starts_with("rbp") || place.starts_with("ebp");
    return ofFrame ? std::string(place) : std::string();
}

CodeRows RowsOfCode(const CodeBytes& code, const std::vector<DisasmInstruction>& list, std::uint64_t target,
                    const CodeView& view) {
    CodeRows made;
    CodeView::Place last;
    for (const DisasmInstruction& instruction : list) {
        const CodeView::Place place = view.placeAt(instruction.address);
        if (place.line != 0 && place != last) {
            made.rows.push_back(SourceRow(place, view));
            made.meanings.push_back({.place = place, .variable = {}});
        }
        last = place;
        if (instruction.address == target) made.target = static_cast<int>(made.rows.size());
        made.rows.push_back(InstructionRow(code, instruction, view));
        made.meanings.push_back(
            {.place = place, .address = instruction.address, .variable = FramePlaceOf(instruction.text)});
    }
    return made;
}

std::vector<DisasmInstruction> DisasmAround(std::span<const std::uint8_t> bytes, std::uint64_t address,
                                            std::uint64_t target, bool x64, std::span<const std::uint64_t> lineStarts,
                                            const DisasmSymbols& symbols) {
    if (target < address || target - address >= bytes.size()) return {};
    std::vector<DisasmInstruction> list = Before(bytes, address, target, x64, lineStarts, symbols);
    if (list.size() > kInstructionsBefore) list.erase(list.begin(), list.end() - kInstructionsBefore);
    const auto rest = bytes.subspan(static_cast<std::size_t>(target - address));
    const auto after = DisasmRange(rest, target, x64, symbols, kInstructionsShown - list.size());
    list.insert(list.end(), after.begin(), after.end());
    return list;
}

std::wstring CodeBytesText(std::span<const std::uint8_t> bytes) {
    std::wstring text;
    for (std::size_t i = 0; i < std::min(bytes.size(), kShownBytes); ++i) {
        if (i > 0) text += L' ';
        text += HexText(bytes[i], 2);
    }
    return bytes.size() > kShownBytes ? text + L" .." : text;
}
