// What events mean. Must not know a process.
#include "debugger/stop_rules.h"

#include "base/texts.h"

namespace {

constexpr std::uint32_t kBreakpoint = 0x80000003, kWow64Breakpoint = 0x4000001F;
constexpr std::uint32_t kSingleStep = 0x80000004, kWow64SingleStep = 0x4000001E;
constexpr std::uint32_t kFaults[] = {
    0xC0000005,  // access violation
    0xC0000006,  // page that cannot be read in
    0xC000001D,  // illegal instruction
    0xC000008C,  // array bounds
    0xC000008D,  // floating point: denormal operand
    0xC000008E,  // floating point: division by zero
    0xC000008F,  // floating point: inexact result
    0xC0000090,  // floating point: invalid operation
    0xC0000091,  // floating point: overflow
    0xC0000092,  // floating point: stack check
    0xC0000093,  // floating point: underflow
    0xC0000094,  // integer division by zero
    0xC0000095,  // integer overflow
    0xC0000096,  // privileged instruction
    0xC00000FD,  // stack overflow
    0xC00002B4,  // vector floating point in a 32-bit program: faults
    0xC00002B5,  // vector floating point in a 32-bit program: traps
    0x80000002,  // misaligned data
};

bool IsInterruptOfTwoBytes(std::uint8_t first, std::uint8_t second) { return first == 0xCD && second == 0x03; }

}  // namespace

std::optional<std::uint64_t> LateHitAddress(const TrapEvent& trap) {
    const auto [before, at] = trap.bytes.value_or(std::array<std::uint8_t, 2>{});
    if (trap.bytes && at != kTrapByte && trap.removedAt) return trap.address;
    if (!trap.ipAfter)
        return trap.bytes && before != kTrapByte && trap.removedBefore ? std::optional(trap.address - 1) : std::nullopt;
    const bool gone = trap.bytes && at != kTrapByte && !IsInterruptOfTwoBytes(before, at);
    return trap.inImage && gone ? std::optional(trap.address) : std::nullopt;
}

ExceptionKind ExceptionKindOf(std::uint32_t code) {
    switch (code) {
        case kBreakpoint:
        case kWow64Breakpoint: return ExceptionKind::Breakpoint;
        case kSingleStep:
        case kWow64SingleStep: return ExceptionKind::SingleStep;
        default: break;
    }
    for (const std::uint32_t fault : kFaults)
        if (fault == code) return ExceptionKind::Fault;
    return ExceptionKind::Other;
}

bool RvaOf(std::uint64_t address, std::uint64_t imageBase, std::uint32_t* rva) {
    const std::uint64_t distance = address - imageBase;
    *rva = static_cast<std::uint32_t>(distance);
    return address >= imageBase && distance <= 0xFFFFFFFFU;
}

SourcePlace PlaceOf(const SdbgMap& map, std::uint64_t address) {
    std::uint32_t rva = 0;
    if (!RvaOf(address, map.imageBase, &rva)) return {};
    return {SdbgRvaToLine(&map, rva), SdbgRvaToFileId(&map, rva)};
}

SourcePlace PlaceInImage(const SdbgMap& map, std::uint32_t imageSize, std::uint64_t address) {
    if (address < map.imageBase || (imageSize != 0 && address - map.imageBase >= imageSize)) return {};
    const SourcePlace place = PlaceOf(map, address);
    return place.line != 0 ? place : SourcePlace{};
}

PausePlace PlaceOfPause(const SdbgMap& map, std::uint32_t imageSize, std::uint64_t address, bool standsThere) {
    std::uint32_t rva = 0;
    const bool inCall = !standsThere && RvaOf(address - 1, map.imageBase, &rva);
    const SourcePlace place = PlaceInImage(map, imageSize, inCall ? address - 1 : address);
    if (place.line != 0 && inCall) address = map.imageBase + map.lines[SdbgFindRecord(&map, rva)].rva;
    return {.address = address, .place = place};
}

SourcePlace PlaceOfTrap(const SdbgMap& map, std::uint64_t address) {
    std::uint32_t rva = 0;
    if (map.textSize == 0 || !RvaOf(address, map.imageBase, &rva)) return {};
    if (rva < map.textRva || rva - map.textRva >= map.textSize) return {};
    for (const std::uint32_t tried : {rva, rva - 1, rva + 1, rva + 2})
        if (const std::uint32_t line = SdbgRvaToLine(&map, tried)) return {line, SdbgRvaToFileId(&map, tried)};
    return {};
}

HitVerdict VerdictOfHit(const BreakpointHit& hit) {
    return {.counts = !hit.temporary && (hit.holds || hit.mustStop),
            .stops = hit.mustStop || (hit.holds && hit.hits + 1 >= hit.stopFrom)};
}

bool IsRepeatedTrap(const SdbgMap& map, SourcePlace place, std::uint64_t address, std::int32_t lastLine,
                    std::uint64_t lastAddress) {
    return map.nativeTrapMap != 0 && place.line != 0 && static_cast<std::int64_t>(place.line) == lastLine &&
           address != lastAddress;
}

TrapMeaning MeaningOfTrap(const SdbgMap& map, const TrapEvent& trap) {
    if (LateHitAddress(trap)) return TrapMeaning::LateHit;
    if (trap.pause != DebugPause::None && !trap.inImage)
        return trap.pause == DebugPause::Overtaken ? TrapMeaning::PauseLate : TrapMeaning::Pause;
    const SourcePlace place = PlaceOfTrap(map, trap.address);
    if (IsRepeatedTrap(map, place, trap.address, trap.lastLine, trap.lastAddress)) return TrapMeaning::PassedOver;
    if (map.nativeTrapMap != 0 && place.line != 0 && trap.runsToUserBreakpoint) return TrapMeaning::PassedOver;
    return TrapMeaning::Stop;
}

bool HoldAtFault(DebugFaults* faults, bool fault, std::uint64_t address) {
    faults->count = fault && address == faults->address ? faults->count + 1 : 1;
    faults->address = address;
    if (!fault || faults->count < kFaultsInARow) return false;
    faults->count = 0;
    return true;
}

bool IsFalseStart(const StartStop& stop) {
    constexpr std::uint32_t kFirstTrapTries = 64;
    if (stop.awaits == DebugAwaits::FirstLine) return stop.tries == 1 && stop.ofLoader;
    return stop.line <= 0 && stop.tries < kFirstTrapTries;
}

std::uint32_t StartWaitMs(DebugAwaits awaits) { return awaits == DebugAwaits::FirstTrap ? 10000 : 30000; }

std::wstring StartText(DebugAwaits awaits, int event, std::int32_t line) {
    if (event == kDebugNoSession) return L"";
    if (event == kDebugStopped && line > 0) return TextWith(L"[Debug] Reached line {1}.\n", {std::to_wstring(line)});
    if (awaits == DebugAwaits::FirstTrap)
        return Text(L"[Debug] PowerBASIC debug database contains no usable line map\n");
    return TextWith(L"[Debug] Did not reach first source breakpoint (event {1}).\n", {std::to_wstring(event)});
}

ReportFate TakeReport(DebugReports* reports, const DebugReport& report) {
    constexpr std::size_t kMostCharacters = std::size_t{2} << 20;  // at each end
    const std::size_t characters = report.text.size();
    const bool flood = !reports->kept.empty();
    if (!flood && reports->shown < kReportsAtEachEnd && reports->characters < kMostCharacters) {
        ++reports->shown;
        reports->characters += characters;
        return ReportFate::Shown;
    }
    reports->kept.push_back(report);
    reports->keptCharacters += characters;
    while (reports->kept.size() > kReportsAtEachEnd ||
           (reports->keptCharacters > kMostCharacters && reports->kept.size() > 1)) {
        reports->keptCharacters -= reports->kept.front().text.size();
        reports->kept.pop_front();
        ++reports->leftOut;
    }
    return flood ? ReportFate::Kept : ReportFate::FirstKept;
}
