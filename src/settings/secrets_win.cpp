// Protection of secrets with the system's data protection. Any thread.
#include "settings/secrets.h"

#include "base/bounded_text.h"
#include "base/handles.h"
#include "files/file_io.h"
#include "settings/secret_text.h"

#include <dpapi.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace {

// Clear text leaves no copy in freed memory.
void Wipe(void* bytes, std::size_t length) { SecureZeroMemory(bytes, length); }

}  // namespace

std::wstring ProtectedText(const wchar_t* clearText) {
    if (clearText == nullptr || clearText[0] == L'\0') return {};
    const HeapBlock<char> utf8{WideToUtf8(clearText)};
    if (!utf8) return {};
    const std::size_t length = std::strlen(utf8.get());
    DATA_BLOB clear = {.cbData = static_cast<DWORD>(length), .pbData = reinterpret_cast<BYTE*>(utf8.get())};
    DATA_BLOB sealed = {};
    const BOOL done = CryptProtectData(&clear, nullptr, nullptr, nullptr, nullptr, CRYPTPROTECT_UI_FORBIDDEN, &sealed);
    Wipe(utf8.get(), length);
    const LocalBlock<BYTE> owner{sealed.pbData};
    return done != FALSE ? SecretText({sealed.pbData, sealed.cbData}) : std::wstring{};
}

bool EncryptString(const wchar_t* clearText, wchar_t* out, std::size_t capacity) {
    if (clearText == nullptr || out == nullptr || capacity == 0) return false;
    const bool empty = clearText[0] == L'\0';
    const std::wstring text = ProtectedText(clearText);
    out[0] = L'\0';
    return empty || (!text.empty() && text.size() < capacity && SafeCopyW(out, capacity, text));
}

int DecryptString(const wchar_t* stored, wchar_t* out, std::size_t capacity) {
    if (stored == nullptr || out == nullptr || capacity == 0) return 0;
    std::vector<std::uint8_t> bytes = SecretBytes(stored);
    if (bytes.empty()) return 0;
    DATA_BLOB sealed = {.cbData = static_cast<DWORD>(bytes.size()), .pbData = bytes.data()};
    DATA_BLOB clear = {};
    if (CryptUnprotectData(&sealed, nullptr, nullptr, nullptr, nullptr, CRYPTPROTECT_UI_FORBIDDEN, &clear) == FALSE)
        return 0;
    const LocalBlock<BYTE> owner{clear.pbData};
    out[0] = L'\0';
    if (clear.cbData > 0) {
        const auto* const text = reinterpret_cast<const char*>(clear.pbData);
        const int size = static_cast<int>(clear.cbData);
        const int length = MultiByteToWideChar(CP_UTF8, 0, text, size, nullptr, 0);
        if (length > 0 && static_cast<std::size_t>(length) < capacity) {
            MultiByteToWideChar(CP_UTF8, 0, text, size, out, length);
            out[length] = L'\0';
        }
        Wipe(clear.pbData, clear.cbData);
    }
    return 1;
}
