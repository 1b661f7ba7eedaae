#include "output/output_filter.h"

namespace {
constexpr std::wstring_view kPrefixes[kFilterKinds] = {L"error[", L"help:", L"fix:"};
}

bool OutputFilterPasses(OutputFilter& filter, std::wstring_view line) {
    while (!line.empty() && (line.back() == L'\r' || line.back() == L'\n')) line.remove_suffix(1);
    for (std::size_t kind = 0; kind < kFilterKinds; ++kind) {
        if (!line.starts_with(kPrefixes[kind])) continue;
        if (line == filter.last[kind]) return false;
        filter.last[kind] = line.substr(0, kFilterLineLimit);
        return true;
    }
    return true;
}

void OutputFilterReset(OutputFilter& filter) {
    for (std::wstring& line : filter.last) line.clear();
}
