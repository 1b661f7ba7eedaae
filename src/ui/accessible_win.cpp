#include "ui/accessible.h"

#include "files/libraries.h"
#include "ui/subclass.h"
#include "ui/window_kind.h"
#include "ui/window_text.h"

#include <commctrl.h>
#include <oleacc.h>
#include <richedit.h>

#include <iterator>
#include <utility>

namespace {

// The functions of oleacc.dll, which is loaded when the first screen reader asks.
struct Accessibility {
    decltype(&::CreateStdAccessibleObject) standardObject = nullptr;
    decltype(&::LresultFromObject) answerOf = nullptr;
    decltype(&::ObjectFromLresult) objectOf = nullptr;
};

const Accessibility& Functions() {
    static const Accessibility functions = [] {
        Accessibility found;
        const HMODULE library = LoadSystemLibrary(L"oleacc.dll");
        if (library == nullptr) return found;
        const auto find = [library](auto& function, const char* name) {
            function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(
                reinterpret_cast<void*>(GetProcAddress(library, name)));
        };
        find(found.standardObject, "CreateStdAccessibleObject");
        find(found.answerOf, "LresultFromObject");
        find(found.objectOf, "ObjectFromLresult");
        return found;
    }();
    return functions;
}

// The object of a control with a name of ours: all else is asked of the control's own object.
class NamedAccessible final : public IAccessible {
public:
    NamedAccessible(IAccessible* control, std::wstring name, const AccessibleParts& parts)
        : control_(control), name_(std::move(name)), parts_(parts) {}
    virtual ~NamedAccessible() { control_->Release(); }
    NamedAccessible(const NamedAccessible&) = delete;
    NamedAccessible& operator=(const NamedAccessible&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        if (id != __uuidof(IUnknown) && id != __uuidof(IDispatch) && id != __uuidof(IAccessible))
            return control_->QueryInterface(id, object);
        *object = static_cast<IAccessible*>(this);
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++users_; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --users_;
        if (left == 0) delete this;
        return left;
    }

    HRESULT STDMETHODCALLTYPE get_accName(VARIANT child, BSTR* name) override {
        const bool isSelf = child.vt == VT_I4 && child.lVal == CHILDID_SELF;
        if (!isSelf && !IsPart(child)) return control_->get_accName(child, name);
        const std::wstring text = isSelf ? name_ : parts_.name(static_cast<int>(child.lVal) - 1);
        *name = text.empty() ? nullptr : SysAllocString(text.c_str());
        return text.empty() ? S_FALSE : *name != nullptr ? S_OK : E_OUTOFMEMORY;
    }
    HRESULT STDMETHODCALLTYPE get_accChildCount(LONG* count) override {
        if (parts_.count == 0) return control_->get_accChildCount(count);
        *count = parts_.count;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE get_accChild(VARIANT child, IDispatch** object) override {
        if (!IsPart(child)) return control_->get_accChild(child, object);
        *object = nullptr;  // a part has no object of its own
        return S_FALSE;
    }

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override { return control_->GetTypeInfoCount(count); }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override {
        return control_->GetTypeInfo(index, locale, info);
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override {
        return control_->GetIDsOfNames(id, names, count, locale, ids);
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID id, LCID locale, WORD flags, DISPPARAMS* arguments,
                                     VARIANT* result, EXCEPINFO* exception, UINT* wrong) override {
        return control_->Invoke(member, id, locale, flags, arguments, result, exception, wrong);
    }
    HRESULT STDMETHODCALLTYPE get_accParent(IDispatch** parent) override { return control_->get_accParent(parent); }
    HRESULT STDMETHODCALLTYPE get_accValue(VARIANT child, BSTR* value) override {
        return control_->get_accValue(child, value);
    }
    HRESULT STDMETHODCALLTYPE get_accDescription(VARIANT child, BSTR* text) override {
        return control_->get_accDescription(child, text);
    }
    HRESULT STDMETHODCALLTYPE get_accRole(VARIANT child, VARIANT* role) override {
        return control_->get_accRole(child, role);
    }
    HRESULT STDMETHODCALLTYPE get_accState(VARIANT child, VARIANT* state) override {
        return control_->get_accState(child, state);
    }
    HRESULT STDMETHODCALLTYPE get_accHelp(VARIANT child, BSTR* help) override {
        return control_->get_accHelp(child, help);
    }
    HRESULT STDMETHODCALLTYPE get_accHelpTopic(BSTR* file, VARIANT child, LONG* topic) override {
        return control_->get_accHelpTopic(file, child, topic);
    }
    HRESULT STDMETHODCALLTYPE get_accKeyboardShortcut(VARIANT child, BSTR* key) override {
        return control_->get_accKeyboardShortcut(child, key);
    }
    HRESULT STDMETHODCALLTYPE get_accFocus(VARIANT* child) override { return control_->get_accFocus(child); }
    HRESULT STDMETHODCALLTYPE get_accSelection(VARIANT* children) override {
        return control_->get_accSelection(children);
    }
    HRESULT STDMETHODCALLTYPE get_accDefaultAction(VARIANT child, BSTR* action) override {
        return control_->get_accDefaultAction(child, action);
    }
    HRESULT STDMETHODCALLTYPE accSelect(LONG flags, VARIANT child) override {
        return control_->accSelect(flags, child);
    }
    HRESULT STDMETHODCALLTYPE accLocation(LONG* left, LONG* top, LONG* width, LONG* height, VARIANT child) override {
        return control_->accLocation(left, top, width, height, child);
    }
    HRESULT STDMETHODCALLTYPE accNavigate(LONG direction, VARIANT start, VARIANT* end) override {
        return control_->accNavigate(direction, start, end);
    }
    HRESULT STDMETHODCALLTYPE accHitTest(LONG x, LONG y, VARIANT* child) override {
        return control_->accHitTest(x, y, child);
    }
    HRESULT STDMETHODCALLTYPE accDoDefaultAction(VARIANT child) override { return control_->accDoDefaultAction(child); }
    HRESULT STDMETHODCALLTYPE put_accName(VARIANT, BSTR) override { return DISP_E_MEMBERNOTFOUND; }
    HRESULT STDMETHODCALLTYPE put_accValue(VARIANT child, BSTR value) override {
        return control_->put_accValue(child, value);
    }

private:
    bool IsPart(const VARIANT& child) const {
        return child.vt == VT_I4 && child.lVal >= 1 && child.lVal <= parts_.count;
    }

    IAccessible* control_;  // owned
    std::wstring name_;
    AccessibleParts parts_;
    ULONG users_ = 1;
};

// The control's own object, or the system's for such a control. Null when there is none.
IAccessible* ObjectOfControl(HWND window, WPARAM wParam, LRESULT usual) {
    void* object = nullptr;
    const HRESULT result =
        usual > 0 ? Functions().objectOf(usual, __uuidof(IAccessible), wParam, &object)
                  : Functions().standardObject(window, static_cast<LONG>(OBJID_CLIENT), __uuidof(IAccessible), &object);
    return SUCCEEDED(result) ? static_cast<IAccessible*>(object) : nullptr;
}

LRESULT CALLBACK NamedProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR name) {
    const LRESULT result = SubclassNext(window, message, wParam, lParam);
    if (message != WM_GETOBJECT) return result;
    std::wstring text = IsOfClass(window, WC_BUTTONW) ? WindowText(window) + L", " : L"";
    std::erase(text, L'&');
    return AccessibleAnswer(window, wParam, lParam, text + reinterpret_cast<const wchar_t*>(name), result);
}

bool TextIsContent(HWND window) {
    return IsOfClass(window, WC_EDITW) || IsOfClass(window, MSFTEDIT_CLASS) || IsOfClass(window, WC_LISTBOXW);
}

}  // namespace

LRESULT AccessibleAnswer(HWND window, WPARAM wParam, LPARAM lParam, const std::wstring& name, LRESULT usual,
                         const AccessibleParts& parts) {
    const Accessibility& functions = Functions();
    if (static_cast<LONG>(lParam) != static_cast<LONG>(OBJID_CLIENT)) return usual;
    if (functions.standardObject == nullptr || functions.answerOf == nullptr || functions.objectOf == nullptr)
        return usual;
    IAccessible* const control = ObjectOfControl(window, wParam, usual);
    if (control == nullptr) return 0;  // the answer of the control is used up
    IAccessible* const named = new NamedAccessible(control, name, parts);
    const LRESULT answer = functions.answerOf(__uuidof(IAccessible), wParam, named);
    named->Release();
    return answer;
}

void AccessibleNameSet(HWND window, const wchar_t* name) {
    if (window == nullptr) return;
    if (TextIsContent(window))
        AccessibleNameAdd(window, name);
    else
        SetWindowTextW(window, name);
}

void AccessibleNameAdd(HWND window, const wchar_t* name) {
    if (window != nullptr) SubclassAdd(window, NamedProc, reinterpret_cast<DWORD_PTR>(name));
}
