// Names of windows as a screen reader hears them.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <commctrl.h>
#include <oleacc.h>

#include <set>
#include <string>
#include <vector>

#include "base/utf8.h"
#include "window/class_name.h"

// What the accessibility interface says of a window.
class Accessible {
public:
    explicit Accessible(HWND window) {
        void* object = nullptr;
        if (SUCCEEDED(
                AccessibleObjectFromWindow(window, static_cast<DWORD>(OBJID_CLIENT), __uuidof(IAccessible), &object)))
            object_ = static_cast<IAccessible*>(object);
    }
    ~Accessible() {
        if (object_ != nullptr) object_->Release();
    }
    Accessible(const Accessible&) = delete;
    Accessible& operator=(const Accessible&) = delete;

    std::wstring Name(LONG child = CHILDID_SELF) const {
        if (object_ == nullptr) return L"(no object)";
        VARIANT which = {};
        which.vt = VT_I4;
        which.lVal = child;
        BSTR name = nullptr;
        const HRESULT result = object_->get_accName(which, &name);
        std::wstring text = SUCCEEDED(result) && name != nullptr ? name : L"";
        SysFreeString(name);
        return text;
    }
    std::set<std::wstring> Parts() const {
        LONG count = 0;
        if (object_ != nullptr) object_->get_accChildCount(&count);
        std::set<std::wstring> names;
        for (LONG child = 1; child <= count; ++child) names.insert(Name(child));
        return names;
    }

private:
    IAccessible* object_ = nullptr;
};

inline std::wstring AccessibleName(HWND window) { return Accessible(window).Name(); }

inline std::vector<HWND> ChildrenOf(HWND parent) {
    std::vector<HWND> children;
    EnumChildWindows(
        parent,
        [](HWND child, LPARAM list) -> BOOL {
            reinterpret_cast<std::vector<HWND>*>(list)->push_back(child);
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&children));
    return children;
}

// COM for a scope, as the interface needs it.
struct ComScope {
    ComScope() { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
    ~ComScope() { CoUninitialize(); }
    ComScope(const ComScope&) = delete;
    ComScope& operator=(const ComScope&) = delete;
};

// The window, each one in it that can be reached by the keyboard, and each bar, has a name, and no two editors or panes
// have the same.
inline void ExpectNamed(const std::string& where, HWND parent) {
    const ComScope com;
    EXPECT_FALSE(AccessibleName(parent).empty()) << where << ": the window itself";
    std::set<std::wstring> seen;
    for (const HWND child : ChildrenOf(parent)) {
        const std::wstring kind = ClassOf(child);
        const bool reached = (GetWindowLongPtrW(child, GWL_STYLE) & WS_TABSTOP) != 0 || GetParent(child) == parent;
        if (!reached || IsWindowVisible(child) == FALSE || kind == WC_STATICW) continue;
        if (ClassOf(GetParent(child)) == WC_COMBOBOXW) continue;  // its field has its name
        std::wstring name = AccessibleName(child);
        // Wine takes the label before a field for its name, but not that before a list or a combo box, as Windows does.
        const HWND before = GetWindow(child, GW_HWNDPREV);
        if (name.empty() && (kind == WC_COMBOBOXW || kind == WC_LISTBOXW) && ClassOf(before) == WC_STATICW)
            name = AccessibleName(before);
        EXPECT_FALSE(name.empty()) << where << ": " << ToUtf8(kind) << " " << GetDlgCtrlID(child);
        EXPECT_LT(name.size(), 100u) << where << ": a content, not a name: " << ToUtf8(name.substr(0, 40));
        EXPECT_TRUE(seen.insert(name).second) << where << ": two are called " << ToUtf8(name) << ", one is "
                                              << ToUtf8(kind) << " " << GetDlgCtrlID(child);
    }
}
