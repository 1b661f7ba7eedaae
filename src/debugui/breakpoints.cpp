// The list of the user's breakpoints. Must not know an editor or a process.
#include "debugui/breakpoints.h"

#include "base/path.h"
#include "base/texts.h"

#include <algorithm>
#include <utility>

namespace {

void Unplant(UserBreakpoint* breakpoint, const BreakpointTarget& target) {
    if (breakpoint->address != 0 && target.IsThere()) target.remove(breakpoint->address);
    breakpoint->address = 0;
    breakpoint->shares = 0;
    breakpoint->reason.clear();
    breakpoint->status = breakpoint->enabled ? BreakpointStatus::Idle : BreakpointStatus::Disabled;
}

void Refuse(UserBreakpoint* breakpoint, BreakpointStatus status, std::wstring reason) {
    breakpoint->status = status;
    breakpoint->reason = std::move(reason);
}

void Detach(UserBreakpoint* breakpoint) {
    breakpoint->document = 0;
    breakpoint->handle = -1;
}

}  // namespace

bool BelongsToDocument(const UserBreakpoint& breakpoint, DocumentId document, const std::wstring& path) {
    if (breakpoint.document != 0) return breakpoint.document == document;
    return !path.empty() && PathEqualsIgnoreCase(breakpoint.path, path);
}

UserBreakpoint* BreakpointAtAddress(UserBreakpoints* list, std::uint64_t address) {
    const auto owner = std::ranges::find(*list, address, &UserBreakpoint::address);
    return address != 0 && owner != list->end() ? &*owner : nullptr;
}

void PlantBreakpoint(UserBreakpoints* list, UserBreakpoint* breakpoint, const BreakpointTarget& target) {
    Unplant(breakpoint, target);
    if (!target.IsThere() || !breakpoint->enabled) return;
    const CodePlace place = target.find(breakpoint->path, breakpoint->line);
    if (place.untold) {
        Refuse(breakpoint, BreakpointStatus::NoCode,
               Text(L"KeldorBasic tells the debugger the lines of PBMAIN only: never stops here."));
        return;
    }
    if (place.fileId == 0) {
        Refuse(breakpoint, BreakpointStatus::NoCode, Text(L"This file is not part of the program."));
        return;
    }
    if (place.address == 0) {
        Refuse(breakpoint, BreakpointStatus::NoCode, Text(L"No code on this line: never stops here."));
        return;
    }
    if (const UserBreakpoint* owner = BreakpointAtAddress(list, place.address); owner != nullptr) {
        Refuse(breakpoint, BreakpointStatus::Refused,
               TextWith(L"Has the same code as line {1}, which stops there.", {std::to_wstring(owner->line)}));
        breakpoint->shares = owner->address;
        return;
    }
    switch (target.plant(place.fileId, breakpoint->line)) {
        case PlantResult::TableFull:
            Refuse(breakpoint, BreakpointStatus::Refused, Text(L"Not set: the program has 64 breakpoints already."));
            return;
        case PlantResult::NotWritable:
            Refuse(breakpoint, BreakpointStatus::Refused, Text(L"Not set: the program's memory could not be written."));
            return;
        case PlantResult::Planted: break;
    }
    breakpoint->status = BreakpointStatus::Planted;
    breakpoint->address = place.address;
    breakpoint->hits = 0;
    target.setCondition(place.address, breakpoint->condition);
    target.setStopFrom(place.address, breakpoint->stopFrom);
}

void PlantAllBreakpoints(UserBreakpoints* list, const BreakpointTarget& target) {
    for (UserBreakpoint& breakpoint : *list) breakpoint.address = 0;  // of the previous program
    for (UserBreakpoint& breakpoint : *list) {
        breakpoint.hits = 0;
        PlantBreakpoint(list, &breakpoint, target);
    }
}

std::vector<DocumentId> PlantSharers(UserBreakpoints* list, const BreakpointTarget& target) {
    std::vector<DocumentId> changed;
    for (UserBreakpoint& breakpoint : *list) {
        if (breakpoint.shares == 0 || BreakpointAtAddress(list, breakpoint.shares) != nullptr) continue;
        PlantBreakpoint(list, &breakpoint, target);
        changed.push_back(breakpoint.document);
    }
    return changed;
}

void ForgetBreakpoint(UserBreakpoints* list, std::size_t index, const BreakpointTarget& target) {
    Unplant(&(*list)[index], target);
    list->erase(list->begin() + static_cast<std::ptrdiff_t>(index));
}

void IdleBreakpoints(UserBreakpoints* list) {
    for (UserBreakpoint& breakpoint : *list) Unplant(&breakpoint, {});
}

void ReadHits(UserBreakpoints* list, const BreakpointTarget& target) {
    if (!target.IsThere()) return;
    for (UserBreakpoint& breakpoint : *list) {
        const int hits = breakpoint.address != 0 ? target.hits(breakpoint.address) : -1;
        if (hits >= 0) breakpoint.hits = static_cast<std::uint32_t>(hits);
    }
}

MarkerMerge MergeMarkers(UserBreakpoints* list, const MarkedDocument& marked, const BreakpointTarget& target) {
    std::vector<std::size_t> owners;
    std::vector<KnownBreakpoint> known;
    for (std::size_t i = 0; i < list->size(); ++i) {
        const UserBreakpoint& breakpoint = (*list)[i];
        if (!BelongsToDocument(breakpoint, marked.document, marked.path)) continue;
        owners.push_back(i);
        known.push_back({breakpoint.document != 0 ? breakpoint.handle : -1, breakpoint.line});
    }
    if (known.empty() && marked.markers.empty()) return {};
    const MarkerMatch match = MatchMarkers(known, marked.markers);
    for (std::size_t k = owners.size(); k-- > 0;) {
        if (match.lines[k] == 0) {
            ForgetBreakpoint(list, owners[k], target);
            continue;
        }
        UserBreakpoint& breakpoint = (*list)[owners[k]];
        breakpoint.line = match.lines[k];
        breakpoint.handle = match.handles[k];
        breakpoint.document = marked.document;
        breakpoint.path = marked.path;
    }
    for (const MarkerPlace& marker : match.news) {
        UserBreakpoint breakpoint;
        breakpoint.path = marked.path;
        breakpoint.line = marker.line;
        breakpoint.document = marked.document;
        breakpoint.handle = marker.handle;
        PlantBreakpoint(list, &breakpoint, target);
        list->push_back(std::move(breakpoint));
    }
    return {.surplus = match.surplus, .changed = !match.news.empty() || !match.surplus.empty()};
}

void DetachClosedDocuments(UserBreakpoints* list, const std::function<bool(DocumentId)>& isOpen) {
    for (UserBreakpoint& breakpoint : *list)
        if (breakpoint.document != 0 && !isOpen(breakpoint.document)) Detach(&breakpoint);
}

void DetachDocument(UserBreakpoints* list, DocumentId document, const BreakpointTarget& target) {
    for (UserBreakpoint& breakpoint : *list)
        if (breakpoint.document == document) Detach(&breakpoint);
    for (std::size_t i = list->size(); i-- > 0;)
        if ((*list)[i].document == 0 && (*list)[i].path.empty()) ForgetBreakpoint(list, i, target);
}

bool RenewMarker(UserBreakpoints* list, UserBreakpoints* away, const RenewedMarker& marker,
                 const BreakpointTarget& target) {
    constexpr std::size_t kMostAway = 200;
    const auto isMarked = [&marker](const UserBreakpoint& breakpoint) {
        return breakpoint.document == marker.document && breakpoint.handle == marker.before;
    };
    const auto known = std::ranges::find_if(*list, isMarked);
    if (marker.after < 0) {
        if (known == list->end()) return false;
        Unplant(&*known, target);
        if (away->size() >= kMostAway) away->erase(away->begin());
        away->push_back(std::move(*known));
        list->erase(known);
        return true;
    }
    if (known != list->end()) {
        known->handle = marker.after;
        known->line = marker.line;
        return true;
    }
    const auto kept = std::ranges::find_if(*away, isMarked);
    if (kept == away->end()) return false;
    UserBreakpoint breakpoint = std::move(*kept);
    away->erase(kept);
    breakpoint.handle = marker.after;
    breakpoint.line = marker.line;
    PlantBreakpoint(list, &breakpoint, target);
    list->push_back(std::move(breakpoint));
    return true;
}

void SortBreakpoints(UserBreakpoints* list) {
    std::vector<std::pair<std::wstring, UserBreakpoint>> keyed;
    for (UserBreakpoint& breakpoint : *list) keyed.emplace_back(PathKey(breakpoint.path), std::move(breakpoint));
    std::ranges::stable_sort(keyed, [](const auto& a, const auto& b) {
        return a.first != b.first ? a.first < b.first : a.second.line < b.second.line;
    });
    for (std::size_t i = 0; i < keyed.size(); ++i) (*list)[i] = std::move(keyed[i].second);
}

int FindBreakpoint(const UserBreakpoints& list, DocumentId document, int line) {
    for (std::size_t i = 0; i < list.size(); ++i)
        if (list[i].document == document && list[i].line == line) return static_cast<int>(i);
    return -1;
}

bool MoveBreakpointLines(UserBreakpoints* list, DocumentId document, int first, int added) {
    bool moved = false;
    for (UserBreakpoint& breakpoint : *list) {
        if (breakpoint.document != document) continue;
        const int before = std::exchange(breakpoint.line, MovedLine(breakpoint.line, first + 1, added));
        moved = moved || before != breakpoint.line;
    }
    return moved;
}

BreakpointLook LookOfBreakpoint(const UserBreakpoint& breakpoint) {
    if (!breakpoint.enabled) return BreakpointLook::Disabled;
    if (breakpoint.status == BreakpointStatus::NoCode || breakpoint.status == BreakpointStatus::Refused)
        return BreakpointLook::Hollow;
    const bool stopsAlways = breakpoint.condition.empty() && breakpoint.stopFrom <= 1;
    return stopsAlways ? BreakpointLook::Plain : BreakpointLook::Conditional;
}

std::wstring BreakpointTipText(const UserBreakpoint& breakpoint, const std::wstring& condition) {
    if (!breakpoint.enabled) return Text(L"Switched off (Debug > Enable or Disable Breakpoint).");
    if (!breakpoint.reason.empty()) return breakpoint.reason;
    std::wstring tip = condition.empty() ? L"" : TextWith(L"Stops if {1}.", {condition});
    if (breakpoint.stopFrom > 1)
        tip += TextWith(tip.empty() ? L"Stops from hit {1} on." : L" From hit {1} on.",
                        {std::to_wstring(breakpoint.stopFrom)});
    if (breakpoint.address == 0) return tip;
    if (!tip.empty()) tip += L" ";
    return tip + (breakpoint.hits == 1 ? Text(L"Hit once.")
                                       : TextWith(L"Hit {1} times.", {std::to_wstring(breakpoint.hits)}));
}

std::wstring FoldedTipText(std::span<const int> lines) {
    std::wstring text;
    for (const int line : lines) text += (text.empty() ? L"" : L", ") + std::to_wstring(line + 1);
    if (text.empty()) return text;
    return TextWith(lines.size() > 1 ? L"Breakpoints on the folded lines {1}." : L"Breakpoint on the folded line {1}.",
                    {text});
}
