#include "app/startup_rules.h"

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
