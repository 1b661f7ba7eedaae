#include "app/startup_rules.h"

#include <algorithm>

StartupStep StartupStepAfter(StartupStep step, bool anyDocument, bool restoreLastSession) {
    if (anyDocument) return StartupStep::Done;
    switch (step) {
        case StartupStep::OfferSession: return restoreLastSession ? StartupStep::Workspace : StartupStep::NewDocument;
        case StartupStep::Workspace: return StartupStep::RecentFiles;
        case StartupStep::RecentFiles: return StartupStep::NewDocument;
        case StartupStep::NewDocument:
        case StartupStep::Done: break;
    }
    return StartupStep::Done;
}

DocumentId NextToAskAbout(std::span<const RowEntry> row, std::span<const DocumentId> asked) {
    const auto next = std::ranges::find_if(row, [&](const RowEntry& document) {
        return document.modified && std::ranges::find(asked, document.id) == asked.end();
    });
    return next != row.end() ? next->id : 0;
}
