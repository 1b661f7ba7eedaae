#include "ai/recording_dialog.h"

#include "ai/ai_rules.h"
#include "ai/ai_texts.h"
#include "ai/chat_protocol.h"
#include "ai/http.h"
#include "ai/sound_recorder.h"
#include "ai/wav.h"
#include "base/bounded_text.h"
#include "base/events.h"
#include "base/log.h"
#include "base/texts.h"
#include "base/utf8.h"
#include "base/wide_format.h"
#include "resources/ids.h"
#include "settings/settings_state.h"
#include "ui/accessible.h"
#include "ui/dialog_theme.h"
#include "ui/message.h"
#include "ui/ui_state.h"

#include <commctrl.h>

#include <memory>
#include <utility>
#include <vector>

namespace {

constexpr UINT kHeard = WM_APP + 1;  // wParam: Transcription*, deleted by the dialog
constexpr UINT kLookMs = 50;
constexpr ULONGLONG kMostMs = kMostSamples / kSamplesPerSecond * 1000ULL;
constexpr ULONGLONG kDeafMs = 3000;      // without any sound, not even silence: the device has stopped
constexpr ULONGLONG kStoppingMs = 2000;  // longest wait for the rest of the sound from the driver
constexpr int kReplyMs = 5 * 60 * 1000;  // the service answers a long recording after minutes

using Samples = std::vector<std::int16_t>;

struct TranscriptionRequest {
    std::wstring url, key;
    std::string model;
    std::shared_ptr<const Samples> samples;
    HWND dialog = nullptr;
};

struct Transcription {
    std::wstring text;
    AiEnd end;
};
using TranscriptionPtr = std::unique_ptr<Transcription>;

enum class Phase : std::uint8_t { Shown, Opening, Records, Stopping, Ended, Transcribes, Failed };

struct Recording {
    Phase phase = Phase::Shown;
    std::wstring url, host;
    Recorder recorder;
    ULONGLONG began = 0;  // tick counts
    ULONGLONG stopped = 0;
    std::shared_ptr<Samples> samples = std::make_shared<Samples>();  // once the recording has ended
    Worker transcriber;
    std::wstring heard;      // the result
    std::wstring endText;    // for the status bar after a failure
    std::wstring problem;    // why nothing could be recorded
    bool enterHeld = false;  // since it pressed a button, or since before the dialog was there
};

std::string FormOf(const TranscriptionRequest& request, std::string* boundary) {
    const std::string wav = WavFile(*request.samples);
    *boundary = FormBoundary(wav);
    return TranscriptionForm(wav, request.model, *boundary);
}

void Transcribe(TranscriptionRequest& request, const WorkerCancel& cancel) {
    std::string boundary;
    const std::string form = FormOf(request, &boundary);
    HttpExtras extras = {.cancel = &cancel, .replyMs = kReplyMs};
    HttpResponseBuffer buffer;
    const int sent = WinHttpPostRaw(request.url.c_str(), TranscriptionHeaders(boundary, request.key.c_str()).c_str(),
                                    form.data(), static_cast<DWORD>(form.size()), &buffer, nullptr, &extras);
    const HeapBlock<char> body(buffer.data);
    auto result = std::make_unique<Transcription>();
    result->text = sent != 0 ? TranscriptionText(body.get()) : kTranscriptionEmpty;
    result->end = {.outcome = IsTranscription(result->text) ? AiOutcome::Answered : AiOutcome::Failed,
                   .httpStatus = extras.status,
                   .error = extras.error};
    if (sent != 0) result->end.serviceText = WithoutKey(ChatErrorText(body.get()), ToUtf8(request.key));
    if (!cancel.Asked()) WorkerPost(request.dialog, kHeard, std::move(result));  // else the dialog is gone
}

Recording& RecordingOf(HWND dialog) { return *reinterpret_cast<Recording*>(GetWindowLongPtrW(dialog, DWLP_USER)); }

void ShowState(HWND dialog, const std::wstring& text) { SetDlgItemTextW(dialog, IDC_RECORDING_STATE, text.c_str()); }

void ShowLevel(HWND dialog, int level) {
    SendDlgItemMessageW(dialog, IDC_RECORDING_LEVEL, PBM_SETPOS, static_cast<WPARAM>(level), 0);
}

// The first button with what it does now; null: it does nothing, and the focus goes to Cancel.
void ShowButton(HWND dialog, const wchar_t* text) {
    const HWND button = GetDlgItem(dialog, IDOK);
    if (text != nullptr) SetWindowTextW(button, text);
    if (text != nullptr) EnableWindow(button, TRUE);
    const HWND focused = text != nullptr ? button : GetDlgItem(dialog, IDCANCEL);
    SendMessageW(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(focused), TRUE);  // moves the default button, too
    if (text == nullptr) EnableWindow(button, FALSE);
}

void TakeSound(Recording& recording) {
    Samples fresh = RecorderTake(*recording.recorder.feed);
    if (recording.samples->empty())
        *recording.samples = std::move(fresh);
    else
        recording.samples->insert(recording.samples->end(), fresh.begin(), fresh.end());
}

void Fail(HWND dialog, Recording& recording, const std::wstring& text) {
    recording.phase = Phase::Failed;
    ShowState(dialog, text);
    SetDlgItemTextW(dialog, IDC_RECORDING_HOST,
                    TextWith(L"The recording is kept. Try Again sends it once more to {1}.", {recording.host}).c_str());
    ShowButton(dialog, Text(L"Try &Again"));
}

// The recording has ended by itself. Nothing is sent before the user says so.
void EndRecording(HWND dialog, Recording& recording, const wchar_t* why) {
    recording.phase = Phase::Ended;
    WorkerAskToEnd(recording.recorder.worker);
    TakeSound(recording);
    ShowLevel(dialog, 0);
    const bool any = !recording.samples->empty();
    ShowState(dialog, std::wstring(why) +
                          (any ? Text(L" What was said until then can be sent.") : Text(L" Nothing was recorded.")));
    SetDlgItemTextW(dialog, IDC_RECORDING_HOST,
                    any ? TextWith(L"Send sends the recording to {1}.", {recording.host}).c_str() : L"");
    ShowButton(dialog, any ? Text(L"&Send") : nullptr);
}

void BeginTranscription(HWND dialog, Recording& recording) {
    if (recording.phase != Phase::Failed) TakeSound(recording);
    if (recording.samples->empty()) return EndRecording(dialog, recording, Text(L"The microphone gave no sound."));
    recording.heard.clear();
    recording.endText.clear();
    recording.transcriber =
        WorkerStart<Transcribe>(TranscriptionRequest{.url = recording.url,
                                                     .key = g_settings.openAIKey,
                                                     .model = ToUtf8(g_settings.openAITranscriptionModel),
                                                     .samples = recording.samples,
                                                     .dialog = dialog});
    if (!recording.transcriber) return Fail(dialog, recording, Text(L"There is not enough memory."));
    recording.phase = Phase::Transcribes;
    ShowState(dialog, Text(L"Transcribing..."));
    SetDlgItemTextW(dialog, IDC_RECORDING_HOST, TextWith(L"The recording goes to {1}.", {recording.host}).c_str());
    ShowButton(dialog, nullptr);
}

// The device has not given its last block yet.
bool IsStillStopping(const Recording& recording) { return !WorkerWait(recording.recorder.worker, 0); }

void BeginStopping(HWND dialog, Recording& recording) {
    recording.phase = Phase::Stopping;
    recording.stopped = GetTickCount64();
    WorkerAskToEnd(recording.recorder.worker);
    ShowLevel(dialog, 0);
    ShowState(dialog, Text(L"Stopping..."));
    ShowButton(dialog, nullptr);
}

// The user is told where the recording goes before the microphone is opened.
void OpenInput(HWND dialog, Recording& recording) {
    if (IsWindowVisible(dialog) == FALSE) return;
    UpdateWindow(dialog);
    recording.phase = Phase::Opening;
    recording.recorder = RecorderStart();
    if (recording.recorder.worker) return;
    recording.problem = Text(L"There is not enough memory.");
    EndDialog(dialog, IDABORT);
}

void LookForInput(HWND dialog, Recording& recording) {
    SoundFeed& feed = *recording.recorder.feed;
    const RecorderState state = feed.state;
    if (state == RecorderState::Opening) return;
    if (state == RecorderState::NoInput) {
        const std::lock_guard guard(feed.lock);
        recording.problem = feed.problem;
        EndDialog(dialog, IDABORT);
        return;
    }
    recording.phase = Phase::Records;
    recording.began = GetTickCount64();
    ShowState(dialog, Text(L"Recording..."));
    ShowButton(dialog, Text(L"&Stop"));
}

void LookAtRecording(HWND dialog, Recording& recording) {
    const SoundFeed& feed = *recording.recorder.feed;
    const ULONGLONG now = GetTickCount64();
    const auto seconds = static_cast<unsigned>((now - recording.began) / 1000);
    SetDlgItemTextW(dialog, IDC_RECORDING_TIME, FormatW(L"%u:%02u", seconds / 60, seconds % 60).c_str());
    ShowLevel(dialog, feed.level);
    if (feed.state == RecorderState::Lost)
        EndRecording(dialog, recording, Text(L"The microphone was removed."));
    else if (now > feed.heardTick + kDeafMs)
        EndRecording(dialog, recording, Text(L"No more sound comes from the microphone."));
    else if (feed.full || now - recording.began >= kMostMs)
        EndRecording(dialog, recording, Text(L"The recording has reached ten minutes, the limit."));
}

void OnRecordingTimer(HWND dialog, Recording& recording) {
    if (GetAsyncKeyState(VK_RETURN) >= 0) recording.enterHeld = false;
    switch (recording.phase) {
        case Phase::Shown: OpenInput(dialog, recording); break;
        case Phase::Opening: LookForInput(dialog, recording); break;
        case Phase::Records: LookAtRecording(dialog, recording); break;
        case Phase::Stopping:
            if (!IsStillStopping(recording) || GetTickCount64() - recording.stopped > kStoppingMs)
                BeginTranscription(dialog, recording);
            break;
        default: break;
    }
}

void OnHeard(HWND dialog, Recording& recording, const TranscriptionPtr& transcription) {
    if (transcription == nullptr) return;
    recording.heard = transcription->text;
    if (IsTranscription(recording.heard)) {
        EndDialog(dialog, IDOK);
        return;
    }
    const AiEnd& end = transcription->end;
    recording.endText = AiEndText(AiService::OpenAi, 0, end);
    const bool silent = end.httpStatus == 200 && end.serviceText.empty();
    Fail(dialog, recording, silent ? Text(L"The service returned no text for the recording.") : recording.endText);
}

void OnButton(HWND dialog, Recording& recording, int button) {
    // The repeats of the Enter key that pressed a button must not press the one that is the default after that.
    if (recording.enterHeld && GetAsyncKeyState(VK_RETURN) < 0) return;
    recording.enterHeld = GetKeyState(VK_RETURN) < 0;
    if (button == IDCANCEL) {
        EndDialog(dialog, recording.phase == Phase::Failed ? IDOK : IDCANCEL);  // the failure is the result
        return;
    }
    if (button != IDOK) return;
    const bool ended = recording.phase == Phase::Ended;
    if (recording.phase == Phase::Records || (ended && IsStillStopping(recording)))
        BeginStopping(dialog, recording);
    else if (ended || recording.phase == Phase::Failed)
        BeginTranscription(dialog, recording);
}

void OnRecordingInit(HWND dialog, LPARAM lParam) {
    SetWindowLongPtrW(dialog, DWLP_USER, lParam);
    Recording& recording = RecordingOf(dialog);
    DialogApplyTheme(dialog);
    AccessibleNameSet(GetDlgItem(dialog, IDC_RECORDING_LEVEL), Text(L"Sound level"));
    recording.enterHeld = GetAsyncKeyState(VK_RETURN) < 0;
    ShowState(dialog, Text(L"Opening the microphone..."));
    SetDlgItemTextW(
        dialog, IDC_RECORDING_HOST,
        TextWith(L"Stop sends the recording to {1}. It can last for up to ten minutes.", {recording.host}).c_str());
    EnableWindow(GetDlgItem(dialog, IDOK), FALSE);
    SetTimer(dialog, 1, kLookMs, nullptr);
}

INT_PTR CALLBACK RecordingDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_INITDIALOG: OnRecordingInit(dialog, lParam); return TRUE;
        case WM_TIMER: OnRecordingTimer(dialog, RecordingOf(dialog)); return TRUE;
        case kHeard: OnHeard(dialog, RecordingOf(dialog), WorkerTake<TranscriptionPtr>(wParam)); return TRUE;
        case WM_COMMAND: OnButton(dialog, RecordingOf(dialog), LOWORD(wParam)); return TRUE;
        case WM_DESTROY: WorkerDropPosts<TranscriptionPtr>(dialog, kHeard); return FALSE;
        default: return FALSE;
    }
}

std::wstring TranscriptionUrl() {
    wchar_t url[kPathCapacity] = {};
    SafeCopyW(url, g_settings.openAIUrl);
    StripChatEndpoint(url);
    SafeCatW(url, L"/audio/transcriptions");
    return url;
}

}  // namespace

std::wstring RecordingDialogShow(HWND owner) {
    Recording recording = {.url = TranscriptionUrl()};
    recording.host = HostOfUrl(recording.url);
    if (recording.host.empty()) recording.host = Text(L"the OpenAI URL of the settings");
    const INT_PTR answer = DialogBoxParamW(g_ui.hInstance, MAKEINTRESOURCEW(IDD_RECORDING), owner, RecordingDlgProc,
                                           reinterpret_cast<LPARAM>(&recording));
    if (answer == -1) AppLogMsg(L"FAIL: RecordingDialogShow error=%lu", GetLastError());
    WorkerAskToEnd(recording.recorder.worker);
    WorkerAskToEnd(recording.transcriber);
    if (answer == IDABORT) ErrorMessage(L"%s", recording.problem.c_str());
    if (answer != IDOK) return {};
    if (!recording.endText.empty()) g_events.statusText(recording.endText.c_str());
    return recording.heard;
}
