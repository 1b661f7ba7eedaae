#include "ai/recording_dialog.h"

#include "ai/ai_rules.h"
#include "ai/ai_texts.h"
#include "ai/http.h"
#include "ai/sound_input.h"
#include "ai/wav.h"
#include "base/bounded_text.h"
#include "base/events.h"
#include "base/log.h"
#include "base/utf8.h"
#include "base/wide_format.h"
#include "resources/ids.h"
#include "settings/settings_state.h"
#include "ui/dialog_theme.h"
#include "ui/message.h"
#include "ui/ui_state.h"

#include <commctrl.h>

#include <algorithm>
#include <span>

namespace {

constexpr UINT kHeard = WM_APP + 1;  // wParam: Transcription*, deleted by the dialog
constexpr UINT kReadMs = 50;
constexpr std::size_t kMeterSamples = kSamplesPerSecond / 10;

struct TranscriptionRequest {
    std::wstring url, key;
    std::string model, wav;
    HWND dialog = nullptr;
};

struct Transcription {
    std::wstring text;
    AiEnd end;
};
using TranscriptionPtr = std::unique_ptr<Transcription>;

struct Recording {
    std::vector<std::int16_t> samples;
    bool listens = false;
    Worker worker;       // once the recording has ended
    std::wstring heard;  // the result
};

void Transcribe(TranscriptionRequest& request, const WorkerCancel& cancel) {
    const std::string boundary = FormBoundary(request.wav);
    const std::string form = TranscriptionForm(request.wav, request.model, boundary);
    HttpExtras extras = {.cancel = &cancel};
    HttpResponseBuffer buffer;
    const int sent = WinHttpPostRaw(request.url.c_str(), TranscriptionHeaders(boundary, request.key.c_str()).c_str(),
                                    form.data(), static_cast<DWORD>(form.size()), &buffer, nullptr, &extras);
    const HeapBlock<char> body(buffer.data);
    auto result = std::make_unique<Transcription>();
    result->text = sent != 0 ? TranscriptionText(body.get()) : kTranscriptionEmpty;
    result->end = {.outcome = IsTranscription(result->text) ? AiOutcome::Answered : AiOutcome::Failed,
                   .httpStatus = extras.status,
                   .error = extras.error};
    if (!cancel.Asked()) WorkerPost(request.dialog, kHeard, std::move(result));  // else the dialog is gone
}

Recording& RecordingOf(HWND dialog) { return *reinterpret_cast<Recording*>(GetWindowLongPtrW(dialog, DWLP_USER)); }

void ShowRecording(HWND dialog, const Recording& recording) {
    const auto seconds = static_cast<unsigned>(recording.samples.size() / kSamplesPerSecond);
    SetDlgItemTextW(dialog, IDC_RECORDING_TIME, FormatW(L"%u:%02u", seconds / 60, seconds % 60).c_str());
    const std::span<const std::int16_t> all(recording.samples);
    const int level = SoundLevel(all.last(std::min(all.size(), kMeterSamples)));
    SendDlgItemMessageW(dialog, IDC_RECORDING_LEVEL, PBM_SETPOS, static_cast<WPARAM>(level), 0);
}

void StopListening(HWND dialog, Recording& recording) {
    if (!std::exchange(recording.listens, false)) return;
    KillTimer(dialog, 1);
    g_soundInput->read(&recording.samples);
    g_soundInput->stop();
}

void BeginTranscription(HWND dialog, Recording& recording) {
    if (!recording.listens) return;  // Stop was pressed twice
    StopListening(dialog, recording);
    wchar_t url[kPathCapacity] = {};
    SafeCopyW(url, g_settings.openAIUrl);
    StripChatEndpoint(url);
    SafeCatW(url, L"/audio/transcriptions");
    if (!recording.samples.empty())
        recording.worker =
            WorkerStart<Transcribe>(TranscriptionRequest{.url = url,
                                                         .key = g_settings.openAIKey,
                                                         .model = ToUtf8(g_settings.openAITranscriptionModel),
                                                         .wav = WavFile(recording.samples),
                                                         .dialog = dialog});
    if (!recording.worker) {  // nothing was recorded, or there is no memory
        EndDialog(dialog, IDCANCEL);
        return;
    }
    SetDlgItemTextW(dialog, IDC_RECORDING_STATE, L"Transcribing...");
    SendDlgItemMessageW(dialog, IDC_RECORDING_LEVEL, PBM_SETPOS, 0, 0);
    SetFocus(GetDlgItem(dialog, IDCANCEL));
    EnableWindow(GetDlgItem(dialog, IDOK), FALSE);
}

void OnRecordingTimer(HWND dialog, Recording& recording) {
    g_soundInput->read(&recording.samples);
    ShowRecording(dialog, recording);
    if (recording.samples.size() >= kMostSamples) BeginTranscription(dialog, recording);
}

void OnHeard(HWND dialog, Recording& recording, const Transcription& transcription) {
    recording.heard = transcription.text;
    if (!IsTranscription(transcription.text))
        g_events.statusText(AiEndText(AiService::OpenAi, 0, transcription.end).c_str());
    EndDialog(dialog, IDOK);
}

void OnRecordingInit(HWND dialog, LPARAM recording) {
    SetWindowLongPtrW(dialog, DWLP_USER, recording);
    DialogApplyTheme(dialog);
    ShowRecording(dialog, RecordingOf(dialog));
    SetTimer(dialog, 1, kReadMs, nullptr);
}

INT_PTR CALLBACK RecordingDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_INITDIALOG: OnRecordingInit(dialog, lParam); return TRUE;
        case WM_TIMER: OnRecordingTimer(dialog, RecordingOf(dialog)); return TRUE;
        case kHeard: OnHeard(dialog, RecordingOf(dialog), *WorkerTake<TranscriptionPtr>(wParam)); return TRUE;
        case WM_COMMAND:
            if (LOWORD(wParam) == IDOK) BeginTranscription(dialog, RecordingOf(dialog));
            if (LOWORD(wParam) == IDCANCEL) EndDialog(dialog, IDCANCEL);
            return TRUE;
        case WM_DESTROY: WorkerDropPosts<TranscriptionPtr>(dialog, kHeard); return FALSE;
        default: return FALSE;
    }
}

}  // namespace

std::wstring RecordingDialogShow(HWND owner) {
    Recording recording;
    std::wstring problem;
    if (!g_soundInput->start(&problem)) {
        ErrorMessage(L"%s", problem.c_str());
        return {};
    }
    recording.listens = true;
    const INT_PTR answer = DialogBoxParamW(g_ui.hInstance, MAKEINTRESOURCEW(IDD_RECORDING), owner, RecordingDlgProc,
                                           reinterpret_cast<LPARAM>(&recording));
    if (answer == -1) AppLogMsg(L"FAIL: RecordingDialogShow error=%lu", GetLastError());
    if (recording.listens) g_soundInput->stop();
    WorkerAskToEnd(recording.worker);
    return answer == IDOK ? recording.heard : std::wstring();
}
