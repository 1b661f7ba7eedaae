// The list of models of the settings dialog: asks the service for it on another thread. UI thread only.
#include "ai/ai_api.h"
#include "ai/ai_texts.h"
#include "app/settings_dialog_internal.h"
#include "base/bounded_text.h"
#include "base/utf8.h"

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

}  // namespace

void SettingsFetchModels(SettingsDialog& dialog, FormPlace place) {
    if (!WorkerWait(dialog.fetch, 0)) return;
    const bool local = ItemAt(place).row->offset == offsetof(Settings, lmStudioModel);
    FetchRequest request{.dialog = dialog.window,
                         .url = TextOfKind(dialog, place.page, SettingControl::Url),
                         .key = TextOfKind(dialog, place.page, SettingControl::Secret),
                         .filter = !local,
                         .reply = std::make_unique<ModelsReply>()};
    request.reply->place = place;
    SettingsNoteTell(dialog, place, L"Asking the service...", NoteKind::Help);
    dialog.fetch = WorkerStart<FetchModels>(std::move(request));
    if (!dialog.fetch) SettingsOnModels(dialog, {.place = place, .names = {}});
}

void SettingsOnModels(SettingsDialog& dialog, const ModelsReply& reply) {
    constexpr unsigned kUnauthorised = 401;
    if (!reply.fetched)
        return SettingsNoteTell(dialog, reply.place,
                                reply.status == kUnauthorised ? L"401: API key required"
                                                              : L"Failed to fetch models. Check URL and API key.",
                                NoteKind::Bad);
    const HWND list = WindowsAt(dialog, reply.place).parts[kPartField];
    const std::wstring text = TextAt(dialog, reply.place);
    dialog.filling = true;
    SendMessageW(list, WM_SETREDRAW, FALSE, 0);
    SendMessageW(list, CB_RESETCONTENT, 0, 0);
    for (const std::wstring& name : reply.names)
        SendMessageW(list, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name.c_str()));
    SendMessageW(list, WM_SETREDRAW, TRUE, 0);
    SetWindowTextW(list, text.c_str());
    InvalidateRect(list, nullptr, TRUE);
    dialog.filling = false;
    SettingsNoteTell(dialog, reply.place,
                     L"The service answers. Models in the list: " + std::to_wstring(reply.names.size()) + L".",
                     NoteKind::Good);
}
