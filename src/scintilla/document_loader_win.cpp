#include "scintilla/document_loader.h"

#include <windows.h>

#include <Scintilla.h>

#include <mutex>

namespace {

// Only a Scintilla window makes documents (SCI_CREATELOADER), and it changes a part of itself while it does. So there is
// one that nobody sees. It lives as long as the process, because a worker that hangs on a share may outlive everything
// else.
struct LoaderWindow {
    SciFnDirect call = nullptr;
    sptr_t pointer = 0;
    std::mutex turn;
};
LoaderWindow& TheWindow() {
    static LoaderWindow* const window = new LoaderWindow;
    return *window;
}

}  // namespace

bool DocumentLoaderPrepare() {
    LoaderWindow& loader = TheWindow();
    if (loader.call != nullptr) return true;
    HMODULE library = nullptr;
    const HWND window =
        CreateWindowExW(0, L"Scintilla", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, GetModuleHandleW(nullptr), nullptr);
    if (window == nullptr) return false;
    loader.pointer = SendMessageW(window, SCI_GETDIRECTPOINTER, 0, 0);
    const LRESULT call = SendMessageW(window, SCI_GETDIRECTFUNCTION, 0, 0);
    if (loader.pointer == 0 || call == 0) return false;
    // The code of the window stays loaded as well.
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                       reinterpret_cast<const wchar_t*>(call), &library);
    loader.call = reinterpret_cast<SciFnDirect>(call);
    return true;
}

LoaderOwner DocumentLoaderNew(std::size_t size, bool styles) {
    LoaderWindow& loader = TheWindow();
    const std::scoped_lock lock(loader.turn);
    if (loader.call == nullptr) return {};
    const sptr_t options = styles ? SC_DOCUMENTOPTION_DEFAULT : SC_DOCUMENTOPTION_STYLES_NONE;
    return LoaderOwner{reinterpret_cast<Scintilla::ILoader*>(
        loader.call(loader.pointer, SCI_CREATELOADER, static_cast<uptr_t>(size), options))};
}
