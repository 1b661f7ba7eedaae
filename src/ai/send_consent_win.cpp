#include "ai/send_consent.h"

#include "ai/ai_texts.h"
#include "ai/send_size.h"
#include "base/texts.h"
#include "documents/document_row.h"
#include "scintilla/sci.h"
#include "ui/message.h"

#include <algorithm>
#include <string>
#include <vector>

namespace {

std::vector<std::wstring> g_agreedHosts;  // in this run

bool IsWhole(HWND editor, const AiTarget& target) {
    return target.all || target.sent.size() >= static_cast<std::size_t>(SciSend(editor, SCI_GETLENGTH));
}

}  // namespace

bool SendIsAllowed(const wchar_t* url, const AiTarget& target, std::size_t message) {
    const int tab = TabBarFindDocument(target.document);
    SendSize size = {.source = target.sent.size(), .message = message, .host = HostOfUrl(url)};
    if (IsTabIndex(tab)) {
        size.document = TabAt(tab).label;
        size.whole = IsWhole(TabAt(tab).editor, target);
    }
    if (!IsSizeTold(size) || std::ranges::find(g_agreedHosts, size.host) != g_agreedHosts.end()) return true;
    const std::wstring text = SizeQuestion(size);
    const UserQuestion question = {.caption = kProgramCaption,
                                   .text = text.c_str(),
                                   .buttons = AskButtons::OkCancel,
                                   .icon = AskIcon::Question,
                                   .inSelftest = Answer::Yes,
                                   .yes = Text(L"&Send"),
                                   .loses = Answer::Yes};
    if (AskUser(question) != Answer::Yes) {
        g_events.statusText(Text(L"Nothing was sent"));
        return false;
    }
    g_agreedHosts.push_back(size.host);
    return true;
}
