// Measures a request of the assistant from its call to its reply, against a server on the loopback address that answers
// at once. The floor is WinHTTP called with the same bytes and nothing around it. Both take turns, so that they have the
// same load of the machine.
#include "support/http_server.h"

#include "bench.h"

#include "ai/ai_api.h"
#include "ai/chat_protocol.h"
#include "base/handles.h"

#include <string>

namespace {

constexpr int kRuns = 5;
constexpr int kPairs = 40;        // of a run
constexpr double kMostMore = 20;  // ms that a request may take longer than the bare one
constexpr std::size_t kCodeBytes = 4000;

struct BareHandle {
    HINTERNET handle;
    ~BareHandle() { WinHttpCloseHandle(handle); }
};

double BareRequest(unsigned port, const std::string& body) {
    const double start = NowMs();
    const BareHandle session{WinHttpOpen(L"bench", WINHTTP_ACCESS_TYPE_DEFAULT_PROXY, nullptr, nullptr, 0)};
    const BareHandle connection{WinHttpConnect(session.handle, L"127.0.0.1", static_cast<INTERNET_PORT>(port), 0)};
    const BareHandle request{WinHttpOpenRequest(connection.handle, L"POST", L"/v1", nullptr, nullptr, nullptr, 0)};
    const auto length = static_cast<DWORD>(body.size());
    if (WinHttpSendRequest(request.handle, L"Content-Type: application/json\r\n", static_cast<DWORD>(-1),
                           const_cast<char*>(body.data()), length, length, 0) == FALSE ||
        WinHttpReceiveResponse(request.handle, nullptr) == FALSE)
        Die("the bare request failed");
    std::string reply(64 << 10, '\0');
    DWORD count = 0;
    std::size_t all = 0;
    while (WinHttpReadData(request.handle, reply.data(), static_cast<DWORD>(reply.size()), &count) != FALSE &&
           count > 0)
        all += count;
    if (all < kCodeBytes) Die("the bare request got no reply");
    return NowMs() - start;
}

double OurRequest(const std::wstring& url, const std::string& message) {
    const double start = NowMs();
    char* reply = nullptr;
    if (AiApiChat(url.c_str(), nullptr, "m", "s", message.c_str(), &reply) == 0) Die("the request failed");
    const HeapBlock<char> owned(reply);
    return NowMs() - start;
}

}  // namespace

void MeasureAi() {
    const std::string code(kCodeBytes, 'x');
    HttpServer server([&code](const std::string&) {
        return HttpAnswer(200, R"({"choices":[{"message":{"content":")" + code + "\"}}]}");
    });
    const std::wstring url = server.Url(L"/v1");
    const auto port = static_cast<unsigned>(std::stoul(url.substr(url.rfind(L':') + 1)));
    const std::string body = ChatRequestJson("m", "s", code.c_str());
    BareRequest(port, body);  // loads libraries
    OurRequest(url, code);
    std::vector<double> bare, ours;
    for (int run = 0; run < Runs(kRuns); ++run) {
        std::vector<double> floor, program;
        for (int i = 0; i < kPairs; ++i) {
            floor.push_back(BareRequest(port, body));
            program.push_back(OurRequest(url, code));
        }
        bare.push_back(Median(floor));
        ours.push_back(Median(program));
    }
    const double most = Median(bare) + kMostMore;
    Report({.work = "a request, answered at once",
            .floor = std::move(bare),
            .program = std::move(ours),
            .maxValue = most,
            .note = "each run the median of 40; goal: 20 ms more; floor: WinHTTP alone",
            .headline = true});
}
