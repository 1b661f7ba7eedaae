// The HTTP client and the chat requests against a real server on the loopback address, with all that a server can do
// wrong.
#include "ai/ai_api.h"
#include "ai/recording_dialog.h"
#include "ai/sound_input.h"
#include "ai/wav.h"
#include "base/bounded_text.h"
#include "resources/ids.h"
#include "settings/settings_state.h"
#include "support/accessible_names.h"
#include "support/http_server.h"

#include "ui/message.h"
#include "ui/ui_state.h"

#include <commctrl.h>
#include <gtest/gtest.h>

namespace {

constexpr char kGood[] = R"({"choices":[{"message":{"content":"fine"}}]})";

std::string ChatWith(const HttpReply& reply, HttpExtras* extras, std::string* request = nullptr,
                     std::string* serviceText = nullptr) {
    HttpServer server([&reply](const std::string&) { return reply; });
    char* text = nullptr;
    AiApiChat(server.Url(L"/v1/chat/completions").c_str(), L"sk-secret", "m", "s", "u", &text, extras, serviceText);
    const HeapBlock<char> owned(text);
    if (request != nullptr && !server.Requests().empty()) *request = server.Requests().front();
    return owned != nullptr ? owned.get() : "(none)";
}

TEST(AiHttp, RequestsAsTheServerSeesThem) {
    HttpExtras extras;
    std::string request;
    EXPECT_EQ(ChatWith(HttpAnswer(200, kGood), &extras, &request), "fine");
    EXPECT_EQ(extras.status, 200U);
    EXPECT_TRUE(request.starts_with("POST /v1/chat/completions HTTP/1.1\r\n")) << request;
    for (const char* part :
         {"User-Agent: KVXE-Editor/1.0\r\n", "Content-Type: application/json\r\n",
          "Authorization: Bearer sk-secret\r\n",
          "\r\n\r\n{\"model\":\"m\",\"messages\":[{\"role\":\"system\",\"content\":\"s\"},{\"role\":\"user\","
          "\"content\":\"u\"}],\"max_tokens\":2048,\"temperature\":0.7}"})
        EXPECT_NE(request.find(part), std::string::npos) << part << " in " << request;

    HttpServer server([](const std::string&) { return HttpAnswer(200, R"({"data":[{"id":"b"},{"id":"a"}]})"); });
    AiModelList list;
    ASSERT_EQ(AiApiFetchModels(server.Url(L"/v1").c_str(), L"", false, &list), 1);
    EXPECT_EQ(list.count, 2);
    EXPECT_STREQ(list.names[0], "a");
    AiApiFreeModelList(&list);
    DWORD status = 7;
    HttpResponseBuffer buffer;
    ASSERT_EQ(WinHttpPostRaw(server.Url(L"/raw").c_str(), nullptr, "a\0b", 3, &buffer, &status), 1);
    std::free(buffer.data);
    EXPECT_EQ(status, 0U);
    ASSERT_EQ(server.Requests().size(), 2U);
    EXPECT_TRUE(server.Requests()[0].starts_with("GET /v1/models HTTP/1.1\r\n"));
    EXPECT_EQ(server.Requests()[0].find("Authorization"), std::string::npos);
    EXPECT_TRUE(server.Requests()[1].ends_with(std::string("\r\n\r\na\0b", 7)));
}

TEST(AiHttp, RepliesOfEveryKind) {
    std::string chunked = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
    for (const char c : std::string(kGood)) chunked += "1\r\n" + std::string(1, c) + "\r\n";
    chunked += "0\r\n\r\n";
    HttpReply slow = HttpAnswer(200, kGood);
    slow.piece = 1;
    HttpReply half = HttpAnswer(200, kGood);
    half.bytes.resize(half.bytes.size() - 10);
    HttpReply shorter = HttpAnswer(200, std::string(kGood) + "    ");
    shorter.bytes.resize(shorter.bytes.size() - 4);
    const std::string large(5 << 20, 'x');
    const struct {
        const char* name;
        HttpReply reply;
        std::string text;
        DWORD status;
    } cases[] = {
        {"chunked", {.bytes = chunked}, "fine", 200},
        {"byte by byte", slow, "fine", 200},
        {"without a length", {.bytes = std::string("HTTP/1.1 200 OK\r\n\r\n") + kGood}, "fine", 200},
        {"5 MB", HttpAnswer(200, R"({"choices":[{"message":{"content":")" + large + "\"}}]}"), large, 200},
        {"empty", HttpAnswer(200, ""), "(none)", 200},
        {"no JSON", HttpAnswer(200, "<html>"), "(none)", 200},
        {"a NUL", HttpAnswer(200, std::string("{\0}", 3)), "(none)", 200},
        {"401", HttpAnswer(401, R"({"error":{"message":"no key"}})"), "(none)", 401},
        {"429 without body", HttpAnswer(429, ""), "(none)", 429},
        {"500 with a reply", HttpAnswer(500, kGood), "fine", 500},
        {"closed half-way", half, "(none)", 200},
        {"closed after whole JSON", shorter, "(none)", 200},
        {"closed at once", {}, "(none)", 0},
        {"no HTTP", {.bytes = "SSH-2.0-x\r\n\r\n"}, "(none)", 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        HttpExtras extras;
        std::string serviceText;
        const std::string text = ChatWith(c.reply, &extras, nullptr, &serviceText);
        EXPECT_TRUE(text == c.text) << text.substr(0, 100);
        EXPECT_EQ(extras.status, c.status) << "error " << extras.error;
        EXPECT_EQ(serviceText, c.status == 401 ? "no key" : "");
        if (c.status != 0) EXPECT_EQ(AiApiLastHttpStatus(), c.status);
    }
    CaptureHttpStatus(nullptr);
    EXPECT_EQ(AiApiLastHttpStatus(), 0U);
}

TEST(AiHttp, TheKeyGoesNowhereElse) {
    HttpServer other([](const std::string&) { return HttpAnswer(200, kGood); });
    HttpServer server([&other](const std::string&) {
        const std::wstring url = other.Url(L"/x");
        return HttpAnswer(302, "", "Location: " + std::string(url.begin(), url.end()) + "\r\n");
    });
    char* reply = nullptr;
    HttpExtras extras;
    EXPECT_EQ(AiApiChat(server.Url(L"/").c_str(), L"sk-secret", "m", "", "u", &reply, &extras), 0);
    EXPECT_EQ(extras.status, 302U);
    EXPECT_TRUE(other.Requests().empty());
}

TEST(AiHttp, PlacesWhereNobodyAnswers) {
    std::wstring gone;
    {
        gone = HttpServer([](const std::string&) { return HttpReply{}; }).Url(L"/");
    }
    const struct {
        std::wstring url;
        DWORD error;
    } cases[] = {{gone, ERROR_WINHTTP_CANNOT_CONNECT},
                 {L"http://no-such-host.invalid/", ERROR_WINHTTP_NAME_NOT_RESOLVED},
                 {L"no address", ERROR_WINHTTP_UNRECOGNIZED_SCHEME},
                 {L"ftp://127.0.0.1/", ERROR_WINHTTP_UNRECOGNIZED_SCHEME}};
    for (const auto& c : cases) {
        HttpExtras extras;
        HttpResponseBuffer buffer;
        EXPECT_EQ(WinHttpGet(c.url.c_str(), nullptr, &buffer, &extras), 0);
        EXPECT_EQ(extras.error, c.error) << std::string(c.url.begin(), c.url.end());
        EXPECT_EQ(buffer.data, nullptr);
    }
}

struct HungCall {
    std::wstring url;
    HttpExtras* extras;
};
void CallHungServer(HungCall& call, const WorkerCancel& cancel) {
    call.extras->cancel = &cancel;
    HttpResponseBuffer buffer;
    WinHttpPost(call.url.c_str(), nullptr, "x", &buffer, call.extras);
    call.extras->cancel = nullptr;
}

// Before its header, in its body.
TEST(AiHttp, ACallToASilentServerIsCancelledAtOnce) {
    for (const char* begun : {"", "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nab"}) {
        SCOPED_TRACE(begun);
        HttpServer server([begun](const std::string&) { return HttpReply{.bytes = begun, .keepsOpen = true}; });
        HttpExtras extras;
        std::atomic<std::uint64_t> received = 0;
        extras.received = &received;
        const Worker worker = WorkerStart<CallHungServer>(HungCall{server.Url(L"/"), &extras});
        const ULONGLONG limit = GetTickCount64() + 10000;
        while ((server.Requests().empty() || received != (begun[0] != '\0' ? 2U : 0U)) && GetTickCount64() < limit)
            Sleep(5);
        EXPECT_FALSE(WorkerWait(worker, 50));
        const ULONGLONG start = GetTickCount64();
        WorkerAskToEnd(worker);
        ASSERT_TRUE(WorkerWait(worker, 5000));
        EXPECT_LT(GetTickCount64() - start, 2000U);
        EXPECT_EQ(extras.error, static_cast<DWORD>(ERROR_CANCELLED));
    }
}

// --- The dialog that records, with an input in place of the microphone
std::atomic<int> g_stops = 0;
std::atomic<bool> g_hasInput = true;
std::atomic<int> g_reads = 0;  // that give sound; none after them
std::atomic<std::size_t> g_samplesOfRead = 0;
std::atomic<bool> g_lost = false;  // the device is gone after them
constexpr SoundInput kSynthetic = {[](std::wstring* problem) -> void* {
                                       *problem = L"none";
                                       return g_hasInput ? &g_stops : nullptr;
                                   },
                                   [](void*, std::vector<std::int16_t>* samples) {
                                       if (g_reads > 0) samples->insert(samples->end(), g_samplesOfRead, 1000);
                                       return g_reads-- > 0 || !g_lost;
                                   },
                                   [](void*, std::vector<std::int16_t>* samples) {
                                       samples->insert(samples->end(), 16, 77);  // the block that was half full
                                       ++g_stops;
                                   }};

// Presses a button once the dialog says the text.
struct Press {
    std::wstring_view state;
    int button;
};
std::vector<Press> g_presses;
ULONGLONG g_pressesEnd = 0;  // tick count; a dialog that still waits then has failed

void CALLBACK PressButtons(HWND, UINT, UINT_PTR, DWORD) {
    const HWND dialog = GetActiveWindow();
    if (dialog != nullptr && GetTickCount64() > g_pressesEnd) {
        ADD_FAILURE() << "still waiting";
        EndDialog(dialog, IDCANCEL);
        return;
    }
    wchar_t state[200] = {};
    wchar_t host[200] = {};
    if (dialog == nullptr || GetDlgItemTextW(dialog, IDC_RECORDING_STATE, state, 200) == 0 || g_presses.empty()) return;
    if (!std::wstring_view(state).starts_with(g_presses.front().state)) return;
    const bool recording = std::wstring_view(state) == L"Recording...";
    if (recording && SendDlgItemMessageW(dialog, IDC_RECORDING_LEVEL, PBM_GETPOS, 0, 0) == 0) return;
    GetDlgItemTextW(dialog, IDC_RECORDING_HOST, host, 200);
    EXPECT_NE(std::wstring_view(host).find(L"127.0.0.1:"), std::wstring_view::npos);
    const int button = g_presses.front().button;
    g_presses.erase(g_presses.begin());
    if (IsWindowEnabled(GetDlgItem(dialog, button)) == FALSE) ADD_FAILURE() << "disabled";
    ExpectNamed("recording", dialog);
    SendMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(button), 0);
}

TEST(AiRecording, LeavesTheTextOrSaysWhyNot) {
    InitCommonControls();
    g_ui.hInstance = GetModuleHandleW(nullptr);
    g_soundInput = &kSynthetic;
    SafeCopyW(g_settings.openAIKey, L"sk-1");
    SafeCopyW(g_settings.openAITranscriptionModel, L"whisper-1");
    const UINT_PTR timer = SetTimer(nullptr, 0, 20, PressButtons);
    const HttpReply good = HttpAnswer(200, R"({"text":"make it shorter"})");
    const HttpReply refused = HttpAnswer(500, R"({"error":"key sk-1 is bad"})");
    constexpr Press kStop = {L"Recording...", IDOK};
    constexpr Press kGiveUp = {L"OpenAI: the request failed", IDCANCEL};
    constexpr Press kTryAgain = {L"OpenAI: the request failed", IDOK};
    const struct {
        const char* name;
        std::vector<HttpReply> replies;
        std::vector<Press> presses;
        const wchar_t* heard;
        int reads = 1000;
        bool lost = false;
        std::size_t samplesOfRead = 1600;
    } cases[] = {
        {"heard", {good}, {kStop}, L"make it shorter"},
        {"refused",
         {refused},
         {kStop, {L"OpenAI: the request failed: HTTP 500, the server has a fault: key  is bad", IDCANCEL}},
         kTranscriptionFailed},
        {"blank",
         {HttpAnswer(200, R"({"text":" \n"})")},
         {kStop, {L"The service returned no text", IDCANCEL}},
         kTranscriptionFailed},
        {"closed", {{}}, {kStop, kGiveUp}, kTranscriptionEmpty},
        {"tried again", {refused, {}, good}, {kStop, kTryAgain, kTryAgain}, L"make it shorter"},
        {"cancelled", {}, {{L"Recording...", IDCANCEL}}, L""},
        {"cancelled later", {{.bytes = "", .keepsOpen = true}}, {kStop, {L"Transcribing...", IDCANCEL}}, L""},
        {"removed", {good}, {{L"The microphone was removed. What", IDOK}}, L"make it shorter", 3, true},
        {"silent device", {good}, {{L"No more sound comes from the microphone. What", IDOK}}, L"make it shorter", 3},
        {"limit", {}, {{L"The recording has reached ten minutes", IDCANCEL}}, L"", 2, false, kMostSamples / 2},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::atomic<std::size_t> served = 0;
        HttpServer server([&](const std::string&) { return c.replies[std::min(served++, c.replies.size() - 1)]; });
        SafeCopyW(g_settings.openAIUrl, server.Url(L"/v1/chat/completions"));
        g_presses = c.presses;
        g_pressesEnd = GetTickCount64() + 20000;
        g_stops = 0, g_reads = c.reads, g_lost = c.lost, g_samplesOfRead = c.samplesOfRead;
        EXPECT_EQ(RecordingDialogShow(nullptr), c.heard);
        for (int i = 0; i < 200 && (g_stops == 0 || server.Requests().size() < c.replies.size()); ++i) Sleep(10);
        EXPECT_EQ(g_stops, 1);
        EXPECT_TRUE(g_presses.empty());
        const std::vector<std::string> requests = server.Requests();
        ASSERT_EQ(requests.size(), c.replies.size());
        for (const std::string& request : requests) {
            EXPECT_TRUE(request.starts_with("POST /v1/audio/transcriptions HTTP/1.1\r\n"));
            EXPECT_NE(request.find("Authorization: Bearer sk-1\r\n"), std::string::npos);
            EXPECT_NE(request.find("\r\n\r\nwhisper-1\r\n--"), std::string::npos);
            EXPECT_NE(request.find("\r\n\r\nRIFF"), std::string::npos);
            EXPECT_NE(request.find(std::string("\x4D\0\x4D\0\r\n--", 8)),
                      std::string::npos);  // with the last block
            EXPECT_TRUE(request.substr(request.find("RIFF")) == requests[0].substr(requests[0].find("RIFF")));
        }
    }
    KillTimer(nullptr, timer);
    g_hasInput = false;
    g_answerInstead = [](const UserQuestion& question) {
        EXPECT_STREQ(question.text, L"none");
        return Answer::Yes;
    };
    EXPECT_EQ(RecordingDialogShow(nullptr), L"");
    g_answerInstead = nullptr;
}

}  // namespace
