#include "completion/completion_commands.h"

#include "completion/completion.h"
#include "completion/tips.h"
#include "completion/user_snippets.h"
#include "resources/ids.h"

namespace {

constexpr CommandHandler kHandlers[] = {
    {IDM_PARAMETER_INFO, [](int) { CallTipShow(); }},
    {IDM_SHOW_DECLARATION, [](int) { HoverShowAtCaret(); }},
    {IDM_EDIT_COMPLETE, [](int) { CompletionShowWanted(); }},
    {IDM_EDIT_SNIPPETS, [](int) { SnippetsEdit(); }},
};

}  // namespace

std::span<const CommandHandler> CompletionCommandHandlers() { return kHandlers; }
