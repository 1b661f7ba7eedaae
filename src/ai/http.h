// A small HTTP client over WinHTTP. Each call blocks until the reply is there, so it belongs on a worker; it can be
// cancelled, and then returns at once. Any thread.
#pragma once

#include "base/worker.h"

#include <windows.h>
#include <winhttp.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <string_view>

// The body of a reply. The caller frees `data` with free(), also after a failure, which may leave a part of the body.
struct HttpResponseBuffer {
    char* data = nullptr;      // followed by a NUL after a success
    std::uint64_t length = 0;  // bytes
};

// What a caller may add to a call, and what it may want to know afterwards.
struct HttpExtras {
    const WorkerCancel* cancel = nullptr;
    std::atomic<std::uint64_t>* received = nullptr;  // bytes of the body so far
    // Gets each piece of the body when it has come, on the thread of the call. True: the piece was used, and is not kept.
    std::function<bool(std::string_view)> arrived;
    int replyMs = 0;   // longest wait for the reply; 0: the limit of WinHTTP
    DWORD status = 0;  // out: of this reply; 0: none came
    DWORD error = 0;   // out: why the call failed (an error of WinHTTP); ERROR_CANCELLED: it was cancelled
};

// Return 1 when a reply was transferred, whatever its status, else 0. `headers` and `extras` may be null. A request with
// an "Authorization:" line follows no redirection, because the key is meant for the server of the settings only.
int WinHttpPost(const wchar_t* url, const wchar_t* headers, const char* body, HttpResponseBuffer* out,
                HttpExtras* extras = nullptr);
int WinHttpGet(const wchar_t* url, const wchar_t* headers, HttpResponseBuffer* out, HttpExtras* extras = nullptr);
// `status` (may be null) is set to 0 and stays so.
int WinHttpPostRaw(const wchar_t* url, const wchar_t* headers, const void* body, DWORD length, HttpResponseBuffer* out,
                   DWORD* status, HttpExtras* extras = nullptr);

// Stores the status of the reply that the request has received, or 0. A null request stores 0.
void CaptureHttpStatus(HINTERNET request);
// The status that was stored last, by whatever thread; 0: none could be read.
DWORD AiApiLastHttpStatus();
