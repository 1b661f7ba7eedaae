// Requests through TLS to a real server. Windows has no such server at hand, so this runs where Wine can start openssl,
// and only there it may add a certificate to the trusted ones without asking anybody.
#include "ai/ai_api.h"
#include "ai/ai_rules.h"
#include "base/utf8.h"
#include "support/http_server.h"
#include "support/temp_files.h"

#include <gtest/gtest.h>
#include <wincrypt.h>

namespace {

constexpr char kReply[] =
    "HTTP/1.1 200 OK\r\nContent-Length: 48\r\nConnection: close\r\n\r\n"
    R"({"choices":[{"message":{"content":"in secret"}}]})";
constexpr ULONGLONG kLimitMs = 20000;

// A port that nobody uses.
unsigned FreePort() {
    WSADATA data;
    WSAStartup(MAKEWORD(2, 2), &data);
    const SOCKET probe = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    int size = sizeof(address);
    bind(probe, reinterpret_cast<sockaddr*>(&address), size);
    getsockname(probe, reinterpret_cast<sockaddr*>(&address), &size);
    closesocket(probe);
    WSACleanup();
    return ntohs(address.sin_port);
}

struct TlsServer {
    TempFolder folder;
    unsigned port = FreePort();

    // False when it does not come up.
    bool Start(int connections) {
        WriteBytes(folder.path / "reply", kReply);
        std::string script = KVX_TESTS_DIR "/support/tls_server.sh";
        script = script.substr(script.find(':') + 1);
        std::wstring line = L"sh " + std::wstring(script.begin(), script.end()) + L" " + std::to_wstring(port) + L" " +
                            std::to_wstring(connections);
        STARTUPINFOW startup = {.cb = sizeof(startup)};
        PROCESS_INFORMATION started = {};
        if (CreateProcessW(L"\\\\?\\unix\\bin\\sh", line.data(), nullptr, nullptr, FALSE, 0, nullptr,
                           folder.path.c_str(), &startup, &started) == FALSE)
            return false;
        const ULONGLONG limit = GetTickCount64() + kLimitMs;
        while (!std::filesystem::exists(folder.path / "cert.der") && GetTickCount64() < limit) Sleep(20);
        return std::filesystem::exists(folder.path / "cert.der");
    }
    std::string Received() const { return ReadBytes(folder.path / "received"); }

    // Asks until the server is up; the reply, or why there is none.
    std::wstring Ask(const wchar_t* host) const {
        const std::wstring url = L"https://" + std::wstring(host) + L":" + std::to_wstring(port) + L"/v1";
        const ULONGLONG limit = GetTickCount64() + kLimitMs;
        for (;;) {
            HttpExtras extras;
            char* reply = nullptr;
            AiApiChat(url.c_str(), L"sk-secret", "m", "", "u", &reply, &extras);
            const HeapBlock<char> owned(reply);
            if (owned != nullptr) return Utf8ToWideText(owned.get());
            if (extras.error != ERROR_WINHTTP_CANNOT_CONNECT || GetTickCount64() > limit)
                return AiEndText(AiService::OpenAi, 0, {.httpStatus = extras.status, .error = extras.error});
            Sleep(50);
        }
    }
};

// A certificate that this user trusts as long as the object lives.
class TrustedCertificate {
public:
    explicit TrustedCertificate(const std::string& der) : store_(CertOpenSystemStoreW(0, L"ROOT")) {
        CertAddEncodedCertificateToStore(store_, X509_ASN_ENCODING, reinterpret_cast<const BYTE*>(der.data()),
                                         static_cast<DWORD>(der.size()), CERT_STORE_ADD_REPLACE_EXISTING,
                                         &certificate_);
        CertControlStore(store_, 0, CERT_STORE_CTRL_COMMIT, nullptr);
    }
    ~TrustedCertificate() {
        CertDeleteCertificateFromStore(certificate_);
        CertCloseStore(store_, 0);
    }
    TrustedCertificate(const TrustedCertificate&) = delete;
    TrustedCertificate& operator=(const TrustedCertificate&) = delete;

private:
    HCERTSTORE store_;
    PCCERT_CONTEXT certificate_ = nullptr;
};

TEST(AiTls, OnlyATrustedServerGetsTheRequest) {
    if (GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") == nullptr)
        GTEST_SKIP() << "not under Wine, where openssl could be started";
    if (GetFileAttributesW(L"\\\\?\\unix\\usr\\bin\\openssl") == INVALID_FILE_ATTRIBUTES)
        GTEST_SKIP() << "no openssl on this machine";
    TlsServer trusted, unknown;
    ASSERT_TRUE(trusted.Start(2) && unknown.Start(1));
    // Before the first request, because a process reads the trusted certificates once.
    const TrustedCertificate certificate(ReadBytes(trusted.folder.path / "cert.der"));
    constexpr wchar_t kRefused[] =
        L"OpenAI: the request failed: no secure connection could be made, because the server's certificate is not "
        L"trusted, has expired or is for another server";
    EXPECT_EQ(unknown.Ask(L"localhost"), kRefused);
    EXPECT_EQ(unknown.Received(), "") << "nothing of the request";
    EXPECT_EQ(trusted.Ask(L"127.0.0.1"), kRefused) << "the certificate is for localhost";
    EXPECT_EQ(trusted.Received(), "");
    EXPECT_EQ(trusted.Ask(L"localhost"), L"in secret");
    EXPECT_NE(trusted.Received().find("\r\nAuthorization: Bearer sk-secret\r\n"), std::string::npos);
}

}  // namespace
