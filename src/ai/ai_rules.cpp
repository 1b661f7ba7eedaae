#include "ai/ai_rules.h"

#include "base/texts.h"
#include "base/utf8.h"
#include "settings/secret_text.h"
#include "settings/settings.h"

namespace {

constexpr std::size_t kServiceTextShown = 160;  // characters

// Why no reply came, by the error number of WinHTTP; null for others.
const wchar_t* TransferProblem(std::uint32_t error) {
    switch (error) {
        case 12002: return Text(L"no answer came in time");
        case 12005:
        case 12006: return Text(L"the URL in the settings is not valid");
        case 12007: return Text(L"the server's name cannot be resolved");
        case 12029: return Text(L"nothing answers at that address");
        case 10053:
        case 10054:  // some systems give the error of the socket
        case 12030: return Text(L"the connection was closed");
        case 12156: return Text(L"the URL leads from one place to the next without an end");
        case 12152: return Text(L"the server's answer is no HTTP");
        case 12157:  // what WinHTTP reports for a certificate differs from system to system
        case 12175:
            return Text(
                L"no secure connection could be made, because the server's certificate is not trusted, has expired "
                L"or is for another server");
        default: return nullptr;
    }
}

const wchar_t* StatusProblem(std::uint32_t status) {
    if (status == 401 || status == 403) return Text(L"the API key was not accepted");
    if (status == 404) return Text(L"the URL or the model is not known");
    if (status == 429) return Text(L"too many requests, or the quota is used up");
    if (status >= 300 && status < 400) return Text(L"the URL has moved");
    if (status >= 500) return Text(L"the server has a fault");
    return Text(L"the reply holds no text");
}

// What the service says, as one line.
std::wstring ServiceTextLine(const AiEnd& end) {
    std::wstring text = Utf8ToWideText(end.serviceText);
    for (wchar_t& c : text)
        if (c < L' ') c = L' ';
    if (text.size() > kServiceTextShown) text = text.substr(0, kServiceTextShown) + L"...";
    return text;
}

std::wstring FailureReason(const AiEnd& end) {
    if (end.httpStatus == 0 || end.error != 0) {
        const wchar_t* problem = TransferProblem(end.error);
        return problem != nullptr ? problem : TextWith(L"error {1}", {std::to_wstring(end.error)});
    }
    std::wstring reason = L"HTTP " + std::to_wstring(end.httpStatus) + L", " + StatusProblem(end.httpStatus);
    const std::wstring text = ServiceTextLine(end);
    return text.empty() ? reason : reason + L": " + text;
}

std::wstring Elapsed(std::uint32_t seconds) {
    const std::wstring rest = std::to_wstring(seconds % 60);
    return std::to_wstring(seconds / 60) + (rest.size() < 2 ? L":0" : L":") + rest;
}

// A key that could not be unprotected is kept in the settings as it is stored. No service takes that.
bool HasOpenAiKey(const Settings& settings) {
    return settings.openAIKey[0] != L'\0' && !IsSecretText(settings.openAIKey);
}

bool OpenAiIsReady(const Settings& settings) {
    return settings.primaryAi == 0 && settings.openAIEnabled != 0 && HasOpenAiKey(settings);
}

}  // namespace

const wchar_t* AiServiceName(AiService service) { return service == AiService::LmStudio ? L"LM-Studio" : L"OpenAI"; }

const wchar_t* AskProblem(AiService service, const Settings& settings, bool hasSelection) {
    if (service == AiService::OpenAi) {
        if (settings.openAIEnabled == 0) return Text(L"OpenAI is not enabled. Enable it in Settings > AI.");
        if (!HasOpenAiKey(settings)) return Text(L"OpenAI API key is missing. Set it in Settings > OAI.");
    } else if (settings.lmStudioEnabled == 0) {
        return Text(L"LM-Studio is not enabled. Enable it in Settings > AI.");
    }
    return hasSelection ? nullptr : Text(L"Please select some text in the editor first.");
}

AiService SendService(const Settings& settings) {
    if (OpenAiIsReady(settings)) return AiService::OpenAi;
    return settings.lmStudioEnabled != 0 ? AiService::LmStudio : AiService::None;
}

const wchar_t* AiDoProblem(const Settings& settings) {
    const bool enabled = settings.primaryAi == 0   ? settings.openAIEnabled != 0
                         : settings.primaryAi == 1 ? settings.lmStudioEnabled != 0
                                                   : true;
    return enabled ? nullptr : Text(L"Selected primary AI is not enabled. Enable it in Settings > AI.");
}

AiService AiDoService(const Settings& settings) {
    return OpenAiIsReady(settings) ? AiService::OpenAi : AiService::LmStudio;
}

AiReplyPath AiReplyPathOf(std::int64_t status, bool hasReply) {
    if (static_cast<std::int32_t>(status) != 0) return AiReplyPath::Result;
    if (hasReply) return AiReplyPath::Chat;
    return status != 0 ? AiReplyPath::Failure : AiReplyPath::Nothing;
}

std::wstring AiProgressText(AiService service, const AiProgress& progress) {
    std::wstring text = TextWith(progress.replying ? English(L"{1}: replying, {2}") : English(L"{1}: waiting, {2}"),
                                 {AiServiceName(service), Elapsed(progress.seconds)});
    if (progress.received >= 1024)
        text = TextWith(L"{1}, {2} KB received", {text, std::to_wstring(progress.received / 1024)});
    if (progress.others > 0) text = TextWith(L"{1} (and {2} more)", {text, std::to_wstring(progress.others)});
    return text;
}

std::wstring AiEndText(AiService service, std::uint32_t seconds, const AiEnd& end) {
    const std::wstring name = AiServiceName(service);
    switch (end.outcome) {
        case AiOutcome::Answered:
            return TextWith(
                end.replyEnd == ReplyEnd::Whole ? L"{1} answered after {2}" : L"{1}: the reply ended early, after {2}",
                {name, Elapsed(seconds)});
        case AiOutcome::Cancelled: return TextWith(L"{1}: the request was cancelled", {name});
        default: return TextWith(L"{1}: the request failed: {2}", {name, FailureReason(end)});
    }
}

std::wstring AiReplyEndLine(const AiEnd& end) {
    if (end.outcome == AiOutcome::Cancelled) return Text(L"[AI]: Cancelled.\r\n");
    if (end.outcome == AiOutcome::Failed) return TextWith(L"[AI]: The request failed: {1}\r\n", {FailureReason(end)});
    switch (end.replyEnd) {
        case ReplyEnd::Cut: return Text(L"[AI]: The connection was lost before the reply was complete.\r\n");
        case ReplyEnd::AtLimit: return Text(L"[AI]: The reply has reached its longest length and is not complete.\r\n");
        case ReplyEnd::Refused:
            return TextWith(L"[AI]: The service has ended the reply: {1}\r\n", {ServiceTextLine(end)});
        default: return end.blank ? Text(L"[AI]: The reply is empty.\r\n") : L"";
    }
}

AiReplyState AiReplyStateAfter(const AiEnded& ended, int held) {
    const bool answered = ended.outcome == AiOutcome::Answered;
    if (!ended.about && (!answered || ended.request < held)) return AiReplyState::None;
    if (!answered) return AiReplyState::Missing;
    return ended.whole ? AiReplyState::Whole : AiReplyState::Cut;
}

const wchar_t* ApplyProblem(AiReplyState state, bool about) {
    switch (state) {
        case AiReplyState::None: return Text(L"No reply has come yet.");
        case AiReplyState::Missing:
            return Text(L"The last request about code of a document was not answered, so there is nothing to apply.");
        case AiReplyState::Cut:
            return Text(
                L"The last reply is not complete, so its code is not put in place of yours. Tools > Insert Code of "
                L"Chat at Caret takes what has come of it.");
        case AiReplyState::Whole: break;
    }
    return about ? nullptr
                 : Text(
                       L"No code was sent that the last reply could take the place of. Tools > Insert Code of Chat at "
                       L"Caret puts it into the document.");
}

std::string WithoutKey(std::string text, std::string_view key) {
    for (std::size_t at = key.empty() ? std::string::npos : text.find(key); at != std::string::npos;
         at = text.find(key))
        text.replace(at, key.size(), "");
    return text;
}
