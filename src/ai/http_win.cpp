// WinHTTP is used in its asynchronous mode: closing the handles of a blocking call from another thread does not end
// that call on every system, while waiting for a completion can be combined with the wish to cancel.
#include "ai/http.h"

#include <cwchar>
#include <string>

namespace {

constexpr wchar_t kUserAgent[] = L"KVXE-Editor/1.0";
constexpr std::size_t kHostCapacity = 256;  // wide characters, as the next one
constexpr std::size_t kPathOfUrlCapacity = 1024;
constexpr std::size_t kFirstBlock = 16 * 1024;  // bytes

std::atomic<DWORD> g_lastStatus = 0;

struct InternetTraits {
    using Type = HINTERNET;
    static bool IsOpen(HINTERNET handle) { return handle != nullptr; }
    static void Close(HINTERNET handle) { WinHttpCloseHandle(handle); }
};
using UniqueInternet = UniqueResource<InternetTraits>;

// What WinHTTP's threads read and write. They share it with the caller until the request's handle is closed for good,
// which may be after a cancelled call has returned.
struct Transfer {
    UniqueHandle stepEnded{CreateEventW(nullptr, FALSE, FALSE, nullptr)};
    std::atomic<DWORD> error = 0;  // of the step
    std::atomic<DWORD> count = 0;  // of the step: bytes available or read
    std::string toSend;
    HeapBlock<char> body;
    std::size_t length = 0, capacity = 0;  // of `body`, bytes
    std::uint64_t came = 0;                // bytes, those that were used at once too
};
using SharedTransfer = std::shared_ptr<Transfer>;

struct HttpCall {
    const wchar_t* verb;
    const wchar_t* url;
    const wchar_t* headers;  // may be null
    bool capturesStatus;     // in the process-wide value
};

void CALLBACK OnTransferStatus(HINTERNET, DWORD_PTR context, DWORD status, void* info, DWORD length) {
    auto* owner = reinterpret_cast<SharedTransfer*>(context);
    if (owner == nullptr) return;
    Transfer& transfer = **owner;
    switch (status) {
        case WINHTTP_CALLBACK_STATUS_HANDLE_CLOSING: delete owner; return;
        case WINHTTP_CALLBACK_STATUS_SENDREQUEST_COMPLETE:
        case WINHTTP_CALLBACK_STATUS_HEADERS_AVAILABLE: break;
        case WINHTTP_CALLBACK_STATUS_DATA_AVAILABLE: transfer.count = *static_cast<const DWORD*>(info); break;
        case WINHTTP_CALLBACK_STATUS_READ_COMPLETE: transfer.count = length; break;
        case WINHTTP_CALLBACK_STATUS_REQUEST_ERROR:
            transfer.error = static_cast<const WINHTTP_ASYNC_RESULT*>(info)->dwError;
            break;
        default: return;
    }
    SetEvent(transfer.stepEnded.Get());
}

// Waits for the end of a step that was begun with the result `begun`. False: it failed or was cancelled, and the extras
// tell the error.
bool StepEnds(BOOL begun, Transfer& transfer, HttpExtras& extras) {
    if (begun == FALSE) {
        extras.error = GetLastError();
        return false;
    }
    const HANDLE events[] = {transfer.stepEnded.Get(), extras.cancel != nullptr ? extras.cancel->Event() : nullptr};
    // Without a limit, because WinHTTP's own time limits end every step.
    const DWORD which = WaitForMultipleObjects(extras.cancel != nullptr ? 2 : 1, events, FALSE, INFINITE);
    extras.error = which == WAIT_OBJECT_0 ? transfer.error.load() : static_cast<DWORD>(ERROR_CANCELLED);
    return extras.error == 0;
}

bool MakeRoom(Transfer& transfer, std::size_t more) {
    const std::size_t needed = transfer.length + more + 1;
    if (needed <= transfer.capacity) return true;
    const std::size_t wanted = std::max(needed, std::max(kFirstBlock, transfer.capacity * 2));
    void* grown = std::realloc(transfer.body.get(), wanted);
    if (grown == nullptr) return false;
    static_cast<void>(transfer.body.release());
    transfer.body.reset(static_cast<char*>(grown));
    transfer.capacity = wanted;
    return true;
}

bool ReadBody(HINTERNET request, Transfer& transfer, HttpExtras& extras) {
    do {
        if (!StepEnds(WinHttpQueryDataAvailable(request, nullptr), transfer, extras)) return false;
        const DWORD available = transfer.count;
        if (!MakeRoom(transfer, available)) {
            extras.error = ERROR_OUTOFMEMORY;
            return false;
        }
        if (available == 0) break;
        if (!StepEnds(WinHttpReadData(request, transfer.body.get() + transfer.length, available, nullptr), transfer,
                      extras))
            return false;
        const std::string_view piece(transfer.body.get() + transfer.length, transfer.count);
        transfer.came += piece.size();
        if (extras.received != nullptr) *extras.received = transfer.came;
        if (!extras.arrived || !extras.arrived(piece)) transfer.length += piece.size();
    } while (transfer.count > 0);
    transfer.body.get()[transfer.length] = '\0';
    return true;
}

// A header with a number; 0 when the reply has none.
DWORD NumberOfReply(HINTERNET request, DWORD header) {
    DWORD number = 0;
    DWORD size = sizeof(number);
    return WinHttpQueryHeaders(request, header | WINHTTP_QUERY_FLAG_NUMBER, WINHTTP_HEADER_NAME_BY_INDEX, &number,
                               &size, WINHTTP_NO_HEADER_INDEX) != FALSE
               ? number
               : 0;
}

DWORD StatusOfReply(HINTERNET request) { return NumberOfReply(request, WINHTTP_QUERY_STATUS_CODE); }

// WinHTTP takes a connection that is closed in the middle of the body for its end on some systems.
bool BodyIsWhole(HINTERNET request, const Transfer& transfer, HttpExtras& extras) {
    if (transfer.came >= NumberOfReply(request, WINHTTP_QUERY_CONTENT_LENGTH)) return true;
    extras.error = ERROR_WINHTTP_CONNECTION_ERROR;
    return false;
}

// From here on the request's handle shares the transfer.
bool ShareTransfer(HINTERNET request, const SharedTransfer& transfer) {
    auto owner = std::make_unique<SharedTransfer>(transfer);
    auto context = reinterpret_cast<DWORD_PTR>(owner.get());
    if (WinHttpSetOption(request, WINHTTP_OPTION_CONTEXT_VALUE, &context, sizeof(context)) == FALSE) return false;
    if (WinHttpSetStatusCallback(request, OnTransferStatus,
                                 WINHTTP_CALLBACK_FLAG_ALL_COMPLETIONS | WINHTTP_CALLBACK_FLAG_HANDLES,
                                 0) == WINHTTP_INVALID_STATUS_CALLBACK)
        return false;
    static_cast<void>(owner.release());  // OnTransferStatus deletes it
    return true;
}

bool AddHeaders(HINTERNET request, const wchar_t* headers) {
    if (headers == nullptr) return true;
    if (std::wcsstr(headers, L"Authorization:") != nullptr) {
        DWORD never = WINHTTP_OPTION_REDIRECT_POLICY_NEVER;
        if (WinHttpSetOption(request, WINHTTP_OPTION_REDIRECT_POLICY, &never, sizeof(never)) == FALSE) return false;
    }
    return WinHttpAddRequestHeaders(request, headers, static_cast<DWORD>(-1), WINHTTP_ADDREQ_FLAG_ADD) != FALSE;
}

// A system that does not know one of the options keeps its own limit.
void LimitReplyTime(HINTERNET request, DWORD milliseconds) {
    for (const DWORD option : {WINHTTP_OPTION_RECEIVE_TIMEOUT, WINHTTP_OPTION_RECEIVE_RESPONSE_TIMEOUT})
        WinHttpSetOption(request, option, &milliseconds, sizeof(milliseconds));
}

bool Exchange(HINTERNET request, const HttpCall& call, const SharedTransfer& transfer, HttpExtras& extras) {
    if (!ShareTransfer(request, transfer) || !AddHeaders(request, call.headers)) {
        extras.error = GetLastError();
        return false;
    }
    if (extras.replyMs > 0) LimitReplyTime(request, static_cast<DWORD>(extras.replyMs));
    const auto length = static_cast<DWORD>(transfer->toSend.size());
    void* body = length > 0 ? transfer->toSend.data() : WINHTTP_NO_REQUEST_DATA;
    if (!StepEnds(WinHttpSendRequest(request, WINHTTP_NO_ADDITIONAL_HEADERS, 0, body, length, length,
                                     reinterpret_cast<DWORD_PTR>(nullptr)),
                  *transfer, extras) ||
        !StepEnds(WinHttpReceiveResponse(request, nullptr), *transfer, extras))
        return false;
    extras.status = StatusOfReply(request);
    if (call.capturesStatus) CaptureHttpStatus(request);
    return ReadBody(request, *transfer, extras) && BodyIsWhole(request, *transfer, extras);
}

bool OpenAndExchange(const HttpCall& call, const SharedTransfer& transfer, HttpExtras& extras) {
    wchar_t host[kHostCapacity] = {};
    wchar_t path[kPathOfUrlCapacity] = {};
    URL_COMPONENTS parts = {};
    parts.dwStructSize = sizeof(parts);
    parts.lpszHostName = host;
    parts.dwHostNameLength = static_cast<DWORD>(kHostCapacity);
    parts.lpszUrlPath = path;
    parts.dwUrlPathLength = static_cast<DWORD>(kPathOfUrlCapacity);
    UniqueInternet session;
    UniqueInternet connection;
    UniqueInternet request;  // closed first
    if (WinHttpCrackUrl(call.url, 0, 0, &parts) != FALSE) {
        session.Reset(WinHttpOpen(kUserAgent, WINHTTP_ACCESS_TYPE_DEFAULT_PROXY, WINHTTP_NO_PROXY_NAME,
                                  WINHTTP_NO_PROXY_BYPASS, WINHTTP_FLAG_ASYNC));
        if (session) connection.Reset(WinHttpConnect(session.Get(), host, parts.nPort, 0));
        const DWORD secure = parts.nScheme == INTERNET_SCHEME_HTTPS ? WINHTTP_FLAG_SECURE : 0;
        if (connection)
            request.Reset(WinHttpOpenRequest(connection.Get(), call.verb, path, nullptr, WINHTTP_NO_REFERER,
                                             WINHTTP_DEFAULT_ACCEPT_TYPES, secure));
    }
    if (!request) {
        extras.error = GetLastError();
        return false;
    }
    return Exchange(request.Get(), call, transfer, extras);
}

int RunHttpCall(const HttpCall& call, std::string_view body, HttpResponseBuffer* out, HttpExtras* wanted) {
    HttpExtras unused;
    HttpExtras& extras = wanted != nullptr ? *wanted : unused;
    extras.status = extras.error = 0;
    *out = {};
    const auto transfer = std::make_shared<Transfer>();
    if (call.url == nullptr || !transfer->stepEnded || body.size() > MAXDWORD) {
        extras.error = ERROR_INVALID_PARAMETER;
        return 0;
    }
    transfer->toSend = body;
    const bool done = OpenAndExchange(call, transfer, extras);
    // A cancelled read may still write into the block, so that stays with the transfer.
    if (extras.error == ERROR_CANCELLED) return 0;
    out->length = transfer->length;
    out->data = transfer->body.release();
    return done ? 1 : 0;
}

}  // namespace

int WinHttpPost(const wchar_t* url, const wchar_t* headers, const char* body, HttpResponseBuffer* out,
                HttpExtras* extras) {
    return RunHttpCall({L"POST", url, headers, true}, body, out, extras);
}

int WinHttpGet(const wchar_t* url, const wchar_t* headers, HttpResponseBuffer* out, HttpExtras* extras) {
    return RunHttpCall({L"GET", url, headers, true}, {}, out, extras);
}

int WinHttpPostRaw(const wchar_t* url, const wchar_t* headers, const void* body, DWORD length, HttpResponseBuffer* out,
                   DWORD* status, HttpExtras* extras) {
    if (status != nullptr) *status = 0;
    return RunHttpCall({L"POST", url, headers, false}, {static_cast<const char*>(body), length}, out, extras);
}

void CaptureHttpStatus(HINTERNET request) { g_lastStatus = request != nullptr ? StatusOfReply(request) : 0; }

DWORD AiApiLastHttpStatus() { return g_lastStatus; }
