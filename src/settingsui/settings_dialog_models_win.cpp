// What the settings dialog asks a service, on another thread: its list of models, or only whether it answers. UI thread
// only.
#include "ai/ai_api.h"
#include "ai/ai_rules.h"
#include "ai/ai_texts.h"
#include "base/bounded_text.h"
#include "base/texts.h"
#include "base/utf8.h"
#include "settingsui/settings_dialog_internal.h"

#include <memory>

namespace {

struct FetchRequest {
    HWND dialog;
    std::wstring url, key;
    bool filter;  // only models that chat or transcribe
    std::unique_ptr<ModelsReply> reply;
};

bool FetchFrom(const std::wstring& url, const FetchRequest& request, const WorkerCancel& cancel) {
    HttpExtras extras;
    extras.cancel = &cancel;
    AiModelList list;
    const bool fetched = AiApiFetchModels(url.c_str(), request.key.c_str(), request.filter, &list, &extras) != 0;
    for (int i = 0; i < list.count; ++i) request.reply->names.push_back(Utf8ToWideText(list.names[i]));
    AiApiFreeModelList(&list);
    request.reply->status = extras.status;
    request.reply->error = extras.error;
    return fetched;
}

// The address is tried as it is first. That of chat completions has no models below it; its base has.
void FetchModels(FetchRequest& request, const WorkerCancel& cancel) {
    wchar_t base[kPathCapacity] = {};
    SafeCopyW(base, request.url);
    StripChatEndpoint(base);
    request.reply->fetched = FetchFrom(request.url, request, cancel) ||
                             (!cancel.Asked() && request.url != base && FetchFrom(base, request, cancel));
    WorkerPost(request.dialog, MSG_SETTINGS_MODELS, std::move(request.reply));
}

// The text of the first item of that kind on the page.
std::wstring TextOfKind(SettingsDialog& dialog, std::size_t page, SettingControl control) {
    const std::vector<SettingItem>& items = SettingsPages()[page].items;
    for (std::size_t i = 0; i < items.size(); ++i)
        if (items[i].control == control) return TextAt(dialog, {page, i});
    return {};
}

bool IsPageOfLmStudio(std::size_t page) {
    for (const SettingItem& item : SettingsPages()[page].items)
        if (item.row != nullptr && item.row->offset == offsetof(Settings, lmStudioUrl)) return true;
    return false;
}

// The list drops the names; what is typed or chosen in its field stays.
void FillModelList(SettingsDialog& dialog, FormPlace place, const std::vector<std::wstring>& names) {
    const HWND list = WindowsAt(dialog, place).parts[kPartField];
    const std::wstring text = TextAt(dialog, place);
    std::size_t bytes = 0;
    for (const std::wstring& name : names) bytes += (name.size() + 1) * sizeof(wchar_t);
    dialog.filling = true;
    SendMessageW(list, WM_SETREDRAW, FALSE, 0);
    SendMessageW(list, CB_RESETCONTENT, 0, 0);
    SendMessageW(list, CB_INITSTORAGE, names.size(), static_cast<LPARAM>(bytes));
    for (const std::wstring& name : names) SendMessageW(list, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name.c_str()));
    SendMessageW(list, WM_SETREDRAW, TRUE, 0);
    SetWindowTextW(list, text.c_str());
    InvalidateRect(list, nullptr, TRUE);
    dialog.filling = false;
}

std::wstring ProblemOf(const ModelsReply& reply, bool onlyTest, AiService service) {
    constexpr unsigned kUnauthorised = 401;
    if (onlyTest)
        return AiEndText(
            service, 0,
            {.outcome = AiOutcome::Failed, .httpStatus = reply.status, .error = reply.error, .serviceText = {}});
    return reply.status == kUnauthorised ? Text(L"401: API key required")
                                         : Text(L"Failed to fetch models. Check URL and API key.");
}

}  // namespace

void SettingsAskService(SettingsDialog& dialog, FormPlace place) {
    if (dialog.asking)
        return SettingsNoteTell(dialog, place, Text(L"Another question is still on its way."), NoteKind::Help);
    FetchRequest request{.dialog = dialog.window,
                         .url = TextOfKind(dialog, place.page, SettingControl::Url),
                         .key = TextOfKind(dialog, place.page, SettingControl::Secret),
                         .filter = !IsPageOfLmStudio(place.page),
                         .reply = std::make_unique<ModelsReply>()};
    request.reply->place = place;
    SettingsNoteTell(dialog, place, Text(L"Asking the service..."), NoteKind::Help);
    dialog.asking = true;
    dialog.fetch = WorkerStart<FetchModels>(std::move(request));
    if (!dialog.fetch) SettingsOnModels(dialog, {.place = place, .names = {}});
}

void SettingsOnModels(SettingsDialog& dialog, const ModelsReply& reply) {
    const bool onlyTest = ItemAt(reply.place).control == SettingControl::ConnectionTest;
    dialog.asking = false;
    if (!reply.fetched) {
        const AiService service = IsPageOfLmStudio(reply.place.page) ? AiService::LmStudio : AiService::OpenAi;
        return SettingsNoteTell(dialog, reply.place, ProblemOf(reply, onlyTest, service), NoteKind::Bad);
    }
    const std::wstring count = std::to_wstring(reply.names.size());
    if (!onlyTest) FillModelList(dialog, reply.place, reply.names);
    SettingsNoteTell(dialog, reply.place,
                     onlyTest ? TextWith(L"The service answers. It offers models: {1}.", {count})
                              : TextWith(L"The service answers. Models in the list: {1}.", {count}),
                     NoteKind::Good);
}
