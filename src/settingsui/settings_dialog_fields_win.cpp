// The controls of the settings dialog: one kind for each kind of setting. UI thread only.
#include "settingsui/settings_dialog_internal.h"

#include "base/bounded_text.h"
#include "base/count_text.h"
#include "base/texts.h"
#include "debugger/exception_rules.h"
#include "debugui/exceptions_dialog.h"
#include "settings/language.h"
#include "settings/settings_state.h"
#include "settings/settings_store.h"
#include "settingsui/settings_preview.h"
#include "ui/accessible.h"
#include "ui/chrome.h"
#include "ui/clipboard.h"
#include "ui/control_theme.h"
#include "ui/dialog_theme.h"
#include "ui/form_layout.h"
#include "ui/paint.h"
#include "ui/path_dialog.h"
#include "ui/subclass.h"
#include "ui/theme_table.h"
#include "ui/ui_state.h"
#include "ui/window_text.h"

#include <commctrl.h>
#include <commdlg.h>

#include <algorithm>
#include <iterator>
#include <memory>

namespace {

using enum SettingControl;

struct ControlMaker {
    HWND parent;
    HFONT font;
    FormPlace place;

    HWND Make(const wchar_t* kind, const wchar_t* text, DWORD style, SettingsPart part, DWORD edge = 0) const {
        const auto id = IDC_SETTINGS_ITEM_FIRST + static_cast<INT_PTR>(place.item) * SETTINGS_PARTS + part;
        const HWND control = CreateWindowExW(edge, kind, text, WS_CHILD | style, 0, 0, 10, 10, parent,
                                             reinterpret_cast<HMENU>(id), g_ui.hInstance, nullptr);
        SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
        return control;
    }
    HWND Edit(DWORD style) const { return Make(WC_EDITW, L"", WS_TABSTOP | style, kPartField, WS_EX_CLIENTEDGE); }
    HWND Button(const wchar_t* text, SettingsPart part, DWORD style = BS_PUSHBUTTON) const {
        return Make(WC_BUTTONW, text, WS_TABSTOP | BS_NOTIFY | style, part);
    }
};

std::wstring LineOf(HWND list, int line) {
    const LRESULT length = SendMessageW(list, LB_GETTEXTLEN, static_cast<WPARAM>(line), 0);
    if (length <= 0) return {};
    std::wstring text(static_cast<std::size_t>(length) + 1, L'\0');
    SendMessageW(list, LB_GETTEXT, static_cast<WPARAM>(line), reinterpret_cast<LPARAM>(text.data()));
    text.resize(static_cast<std::size_t>(length));
    return text;
}

// Returns how many lines there were.
int CopyLines(HWND list, bool onlyChosen) {
    std::wstring text;
    int copied = 0;
    const int count = static_cast<int>(SendMessageW(list, LB_GETCOUNT, 0, 0));
    for (int line = 0; line < count; ++line) {
        if (onlyChosen && SendMessageW(list, LB_GETSEL, static_cast<WPARAM>(line), 0) <= 0) continue;
        text += LineOf(list, line) + L"\r\n";
        ++copied;
    }
    if (copied != 0) ClipboardPutText(g_ui.hMainWnd, text);
    return copied;
}

// The wheel scrolls the page; it changes a list only while that is open.
LRESULT CALLBACK ListWheelProc(HWND list, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    if (message == WM_MOUSEWHEEL && SendMessageW(list, CB_GETDROPPEDSTATE, 0, 0) == 0)
        return SendMessageW(GetParent(list), message, wParam, lParam);
    return SubclassNext(list, message, wParam, lParam);
}

// A text of several lines is not selected when it gets the keyboard: the first letter would replace all of it.
LRESULT CALLBACK LongTextProc(HWND field, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    const LRESULT result = SubclassNext(field, message, wParam, lParam);
    return message == WM_GETDLGCODE ? result & ~DLGC_HASSETSEL : result;
}

HWND MakeLongText(const ControlMaker& maker, DWORD style) {
    const HWND field = maker.Edit(ES_MULTILINE | ES_AUTOVSCROLL | WS_VSCROLL | style);
    SubclassAdd(field, LongTextProc);
    return field;
}

HWND MakeList(const ControlMaker& maker, DWORD style) {
    const HWND list = maker.Make(WC_COMBOBOXW, L"", WS_TABSTOP | WS_VSCROLL | WS_CLIPCHILDREN | style, kPartField);
    SubclassAdd(list, ListWheelProc);
    return list;
}

// Ctrl+C takes the chosen lines.
LRESULT CALLBACK KeyListProc(HWND list, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR) {
    constexpr WPARAM kCtrlC = 3;
    if (message != WM_CHAR || wParam != kCtrlC) return SubclassNext(list, message, wParam, lParam);
    CopyLines(list, true);
    return 0;
}

HWND MakeKeyList(const ControlMaker& maker) {
    const HWND list =
        maker.Make(WC_LISTBOXW, L"",
                   WS_TABSTOP | WS_VSCROLL | LBS_NOTIFY | LBS_USETABSTOPS | LBS_NOINTEGRALHEIGHT | LBS_EXTENDEDSEL,
                   kPartField, WS_EX_CLIENTEDGE);
    SubclassAdd(list, KeyListProc);
    AccessibleNameSet(list, ::Text(L"Keys"));
    return list;
}

HWND MakeField(const ControlMaker& maker, const SettingItem& item, const std::wstring& label) {
    switch (item.control) {
        case Check:
        case FixedFonts: return maker.Button(label.c_str(), kPartField, BS_AUTOCHECKBOX);
        case Font: return MakeList(maker, CBS_DROPDOWNLIST);
        case Choice: {
            const HWND list = MakeList(maker, CBS_DROPDOWNLIST);
            for (const wchar_t* const choice : item.choices)
                SendMessageW(list, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(::Text(choice)));
            return list;
        }
        case Language: {
            const HWND list = MakeList(maker, CBS_DROPDOWNLIST);
            for (const std::wstring& name : LanguageNames())
                SendMessageW(list, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name.c_str()));
            return list;
        }
        case Model: {
            const HWND list = MakeList(maker, CBS_DROPDOWN | CBS_AUTOHSCROLL);
            SendMessageW(list, CB_LIMITTEXT, SettingItemLongest(item), 0);
            return list;
        }
        case LongText: return MakeLongText(maker, ES_WANTRETURN);
        case CommandPreview: return MakeLongText(maker, ES_READONLY);
        case FontPreview: return maker.Make(WC_STATICW, L"", SS_OWNERDRAW, kPartField);
        case Secret: return maker.Edit(ES_AUTOHSCROLL | ES_PASSWORD);
        case SettingsFile:
        case Exceptions: return maker.Edit(ES_AUTOHSCROLL | ES_READONLY);
        case CompilerTest:
        case DefaultProgram:
        case Detect:
        case ConnectionTest:
        case CopyKeys: return maker.Button(label.c_str(), kPartField);
        case Keys: return MakeKeyList(maker);
        default: return maker.Edit(ES_AUTOHSCROLL);
    }
}

HWND MakeButton(const ControlMaker& maker, SettingControl control) {
    switch (control) {
        case File:
        case SettingControl::Folder: return maker.Button(::Text(L"Browse..."), kPartButton);
        case Secret: return maker.Button(::Text(L"Show"), kPartButton);
        case Model: return maker.Button(::Text(L"Fetch"), kPartButton);
        case Exceptions: return maker.Button(::Text(L"Change..."), kPartButton);
        case Colour: return maker.Button(::Text(L"Choose a colour"), kPartButton, BS_OWNERDRAW);
        default: return nullptr;
    }
}

bool HasLabel(SettingControl control) {
    return control != Check && control != FixedFonts && control != Keys && !SettingIsButton(control);
}

// --------------------------------------------------------------------------------------------------------- choosing

void PutText(SettingsDialog& dialog, FormPlace place, const std::wstring& text) {
    TextAt(dialog, place) = text;
    dialog.filling = true;
    SettingsFieldShow(dialog, place);
    dialog.filling = false;
    SettingsItemChanged(dialog, place);
}

// The path as the program takes it.
std::wstring ResolvedText(SettingsDialog& dialog, FormPlace place) {
    wchar_t path[kPathCapacity] = {};
    ResolveExeRelative(TextAt(dialog, place).c_str(), path, kPathCapacity);
    return path;
}

void BrowseForFile(SettingsDialog& dialog, FormPlace place) {
    std::wstring path = ResolvedText(dialog, place);  // the dialog starts in its folder
    if (AskFilePath({.owner = dialog.window, .filter = English(L"Programs (*.exe)\0*.exe\0All Files (*.*)\0*.*\0")},
                    path))
        PutText(dialog, place, path);
}

void BrowseForFolder(SettingsDialog& dialog, FormPlace place) {
    std::wstring folder = ResolvedText(dialog, place);
    if (AskFolderPath(dialog.window, ItemAt(place).label, folder)) PutText(dialog, place, folder);
}

void ChooseColour(SettingsDialog& dialog, FormPlace place) {
    static COLORREF ownColours[16] = {};  // of the system's dialog, as the user left them
    CHOOSECOLORW request = {};
    request.lStructSize = sizeof(request);
    request.hwndOwner = dialog.window;
    request.rgbResult = static_cast<COLORREF>(ColourOfText(TextAt(dialog, place)).value_or(0x808080));
    request.lpCustColors = ownColours;
    request.Flags = CC_RGBINIT | CC_FULLOPEN | CC_ENABLEHOOK;
    request.lpfnHook = ChooserThemeHook;
    if (ChooseColorW(&request) == FALSE) return;
    constexpr COLORREF kNearlyBlack = 0x010101;  // black means that there is no colour
    const COLORREF colour = request.rgbResult != 0 ? request.rgbResult : kNearlyBlack;
    PutText(dialog, place, ColourText(static_cast<std::int32_t>(colour)));
}

void ShowOrHideSecret(SettingsDialog& dialog, FormPlace place) {
    const ItemWindows& windows = WindowsAt(dialog, place);
    const bool hidden = SendMessageW(windows.parts[kPartField], EM_GETPASSWORDCHAR, 0, 0) != 0;
    SendMessageW(windows.parts[kPartField], EM_SETPASSWORDCHAR, hidden ? 0 : L'\u25CF', 0);
    InvalidateRect(windows.parts[kPartField], nullptr, TRUE);
    SetWindowTextW(windows.parts[kPartButton], hidden ? ::Text(L"Hide") : ::Text(L"Show"));
}

void ChangeExceptions(SettingsDialog& dialog, FormPlace place) {
    std::wstring rules = TextAt(dialog, place);
    if (EditExceptionRules(dialog.window, rules)) PutText(dialog, place, rules);
}

void CopyKeyList(SettingsDialog& dialog, FormPlace place) {
    for (std::size_t i = 0; i < dialog.pages[place.page].items.size(); ++i) {
        if (ItemAt({place.page, i}).control != Keys) continue;
        const int lines = CopyLines(WindowsAt(dialog, {place.page, i}).parts[kPartField], false);
        SettingsNoteTell(dialog, place, TextWith(L"Lines copied: {1}.", {std::to_wstring(lines)}), NoteKind::Good);
    }
}

// --------------------------------------------------------------------------------------------------------- previews

// The settings as they would be with the texts of the dialog.
std::unique_ptr<Settings> DraftOf(const SettingsDialog& dialog) {
    auto draft = std::make_unique<Settings>(g_settings);  // 150 kB, too much for the stack
    FormPut(dialog.form, *draft);
    return draft;
}

int FontHeightOf(const SettingsDialog& dialog, const Settings& draft) {
    return -MulDiv(std::clamp(draft.fontSize, 6, 72), dialog.dpi, 72);
}

struct SamplePiece {
    TextRole role;
    const wchar_t* text;
};
// Lines of a sample; a null text ends one.
constexpr SamplePiece kSample[] = {
    {TextRole::Preprocessor, L"#COMPILE EXE"},
    {TextRole::Text, nullptr},
    {TextRole::Keyword, L"FOR "},
    {TextRole::Identifier, L"i"},
    {TextRole::Operator, L" = "},
    {TextRole::Number, L"1"},
    {TextRole::Keyword, L" TO "},
    {TextRole::Number, L"10"},
    {TextRole::Comment, L"  ' 0O1lI"},
    {TextRole::Text, nullptr},
    {TextRole::Keyword, L"  PRINT "},
    {TextRole::String, L"\"Hello\""},
    {TextRole::Text, nullptr},
};

COLORREF ColourOfRole(const Settings& draft, const EditorPalette& palette, TextRole role) {
    for (std::size_t i = 0; i < std::size(kOverriddenRoles); ++i)
        if (kOverriddenRoles[i] == role && draft.colors[i] != 0) return static_cast<COLORREF>(draft.colors[i]);
    return ThemeColorRef(palette.text[static_cast<std::size_t>(role)]);
}

void DrawSample(SettingsDialog& dialog, const DRAWITEMSTRUCT& draw) {
    const auto draft = DraftOf(dialog);
    const EditorPalette& palette = ThemePalette(draft->editorStylePreset, draft->theme != 0);
    dialog.preview.Reset(CreateFontW(FontHeightOf(dialog, *draft), 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE,
                                     DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, CLEARTYPE_QUALITY,
                                     DEFAULT_PITCH, draft->fontName));
    FillArea(draw.hDC, draw.rcItem, ThemeColorRef(palette.back));
    FrameArea(draw.hDC, draw.rcItem, ThemeCurrentChrome().line);
    const HGDIOBJ old = SelectObject(draw.hDC, dialog.preview.Get());
    SetBkMode(draw.hDC, TRANSPARENT);
    TEXTMETRICW metrics = {};
    GetTextMetricsW(draw.hDC, &metrics);
    const int left = draw.rcItem.left + dialog.Px(8);
    RECT at = {left, draw.rcItem.top + dialog.Px(6), draw.rcItem.right - 1, draw.rcItem.bottom - 1};
    for (const SamplePiece& piece : kSample) {
        if (piece.text == nullptr) {
            at.left = left;
            at.top += metrics.tmHeight;
            continue;
        }
        SIZE size = {};
        const int length = lstrlenW(piece.text);
        GetTextExtentPoint32W(draw.hDC, piece.text, length, &size);
        SetTextColor(draw.hDC, ColourOfRole(*draft, palette, piece.role));
        ExtTextOutW(draw.hDC, at.left, at.top, ETO_CLIPPED, &at, piece.text, static_cast<UINT>(length), nullptr);
        at.left += size.cx;
    }
    SelectObject(draw.hDC, old);
}

// The button of a colour shows it: the user's own, or that of the style.
void DrawColour(const SettingsDialog& dialog, FormPlace place, const DRAWITEMSTRUCT& draw) {
    const auto draft = DraftOf(dialog);
    const auto index = (ItemAt(place).row->offset - offsetof(Settings, colors)) / sizeof(std::int32_t);
    const EditorPalette& palette = ThemePalette(draft->editorStylePreset, draft->theme != 0);
    RECT area = draw.rcItem;
    FillArea(draw.hDC, area, ThemeColorRef(palette.back));
    FrameArea(draw.hDC, area,
              (draw.itemState & ODS_FOCUS) != 0 ? ThemeCurrentChrome().accent : ThemeCurrentChrome().line);
    InflateRect(&area, -dialog.Px(4), -dialog.Px(4));
    FillArea(draw.hDC, area, ColourOfRole(*draft, palette, kOverriddenRoles[index]));
    if ((draw.itemState & ODS_FOCUS) != 0) DrawFocusRect(draw.hDC, &area);
}

struct FontSearch {
    bool fixedOnly;
    std::vector<std::wstring> names;
};

int CALLBACK TakeFont(const LOGFONTW* font, const TEXTMETRICW*, DWORD, LPARAM parameter) {
    auto& search = *reinterpret_cast<FontSearch*>(parameter);
    const bool fits = !search.fixedOnly || (font->lfPitchAndFamily & 0x3U) == FIXED_PITCH;
    if (fits && font->lfFaceName[0] != L'@') search.names.emplace_back(font->lfFaceName);  // '@': for vertical text
    return 1;
}

// Sorted; each font comes once for each of its scripts.
std::vector<std::wstring> FontNames(bool fixedOnly) {
    FontSearch search{.fixedOnly = fixedOnly, .names = {}};
    LOGFONTW any = {};
    any.lfCharSet = DEFAULT_CHARSET;
    const HDC dc = GetDC(nullptr);
    EnumFontFamiliesExW(dc, &any, TakeFont, reinterpret_cast<LPARAM>(&search), 0);
    ReleaseDC(nullptr, dc);
    std::ranges::sort(search.names);
    search.names.erase(std::unique(search.names.begin(), search.names.end()), search.names.end());
    return search.names;
}

void FillFontList(HWND list, const std::vector<std::wstring>& lines) {
    SendMessageW(list, WM_SETREDRAW, FALSE, 0);
    SendMessageW(list, CB_RESETCONTENT, 0, 0);
    for (const std::wstring& line : lines) SendMessageW(list, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(line.c_str()));
    SendMessageW(list, WM_SETREDRAW, TRUE, 0);
}

// Chooses a text; one that is not in the list, such as a font that is not installed here, is added.
void ChooseText(HWND list, const std::wstring& text) {
    const auto parameter = reinterpret_cast<LPARAM>(text.c_str());
    LRESULT at = SendMessageW(list, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), parameter);
    if (at == CB_ERR) at = SendMessageW(list, CB_ADDSTRING, 0, parameter);
    SendMessageW(list, CB_SETCURSEL, static_cast<WPARAM>(at), 0);
}

std::wstring ChosenLine(HWND list) {
    const auto at = static_cast<WPARAM>(SendMessageW(list, CB_GETCURSEL, 0, 0));
    const LRESULT length = SendMessageW(list, CB_GETLBTEXTLEN, at, 0);
    if (length <= 0) return {};
    std::wstring text(static_cast<std::size_t>(length) + 1, L'\0');
    text.resize(static_cast<std::size_t>(SendMessageW(list, CB_GETLBTEXT, at, reinterpret_cast<LPARAM>(text.data()))));
    return text;
}

int NumberOf(const std::wstring& text) { return static_cast<int>(std::wcstol(text.c_str(), nullptr, 10)); }

std::wstring ExceptionsSummary(const std::wstring& rules) {
    const std::size_t count = ParseExceptionRules(rules).size();
    if (count == 0) return ::Text(L"None is passed, none stops");
    return CountText(count, English(L"{1} rule of your own"), English(L"{1} rules of your own"));
}

std::wstring SettingsFilePath() {
    wchar_t path[kPathCapacity] = {};
    GetIniPath(nullptr, path, kPathCapacity);
    return path;
}

void SetTextIfOther(HWND control, const std::wstring& text) {
    if (WindowText(control) != text) SetWindowTextW(control, text.c_str());
}

}  // namespace

bool SettingsHasButton(SettingControl control) {
    return control == File || control == SettingControl::Folder || control == Secret || control == Model ||
           control == Exceptions || control == Colour;
}

void SettingsFieldMake(SettingsDialog& dialog, FormPlace place) {
    const SettingItem& item = ItemAt(place);
    const ControlMaker maker{dialog.pages[place.page].window, dialog.font.Get(), place};
    const std::wstring& label = dialog.pages[place.page].labels[place.item];
    HWND* const parts = WindowsAt(dialog, place).parts;
    // In the order of the Tab key. A label gives the keyboard to the control after it.
    if (item.heading != nullptr) {
        parts[kPartHeading] = maker.Make(WC_STATICW, item.heading, SS_NOPREFIX, kPartHeading);
        SendMessageW(parts[kPartHeading], WM_SETFONT, reinterpret_cast<WPARAM>(dialog.bold.Get()), FALSE);
    }
    if (HasLabel(item.control)) parts[kPartLabel] = maker.Make(WC_STATICW, label.c_str(), SS_ENDELLIPSIS, kPartLabel);
    parts[kPartField] = MakeField(maker, item, label);
    parts[kPartButton] = MakeButton(maker, item.control);
    AccessibleNameAdd(parts[kPartButton], label.c_str());
    SettingsFieldScale(dialog, place);
    if (item.row != nullptr) SendMessageW(parts[kPartField], EM_SETLIMITTEXT, SettingItemLongest(item), 0);
    for (HWND const part : WindowsAt(dialog, place).parts) ControlApplyTheme(part);
}

void SettingsNoteMake(SettingsDialog& dialog, FormPlace place) {
    const ControlMaker maker{dialog.pages[place.page].window, dialog.font.Get(), place};
    WindowsAt(dialog, place).parts[kPartNote] = maker.Make(WC_STATICW, L"", SS_NOPREFIX, kPartNote);
}

void SettingsFieldScale(SettingsDialog& dialog, FormPlace place) {
    const HWND field = WindowsAt(dialog, place).parts[kPartField];
    const SettingControl control = ItemAt(place).control;
    if (control == Keys) {
        const UINT tab = 220;  // dialog units of the list's font
        SendMessageW(field, LB_SETTABSTOPS, 1, reinterpret_cast<LPARAM>(&tab));
    } else if (control == Choice || control == Font || control == Language || control == Model) {
        constexpr int kFrame = 6;  // pixels of a combo box around its line
        SendMessageW(field, CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), dialog.Px(kFormFieldHeight) - kFrame);
    }
}

void SettingsKeysFill(SettingsDialog& dialog, FormPlace place) {
    const HWND list = WindowsAt(dialog, place).parts[kPartField];
    if (list == nullptr) return;
    SendMessageW(list, WM_SETREDRAW, FALSE, 0);
    SendMessageW(list, LB_RESETCONTENT, 0, 0);
    for (const std::wstring& line : SettingsKeysFound(dialog, place.page))
        SendMessageW(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(line.c_str()));
    SendMessageW(list, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(list, nullptr, TRUE);
}

void SettingsFieldShow(SettingsDialog& dialog, FormPlace place) {
    const HWND field = WindowsAt(dialog, place).parts[kPartField];
    const std::wstring& text = TextAt(dialog, place);
    switch (ItemAt(place).control) {
        case Check: SendMessageW(field, BM_SETCHECK, NumberOf(text) != 0 ? BST_CHECKED : BST_UNCHECKED, 0); break;
        case FixedFonts: SendMessageW(field, BM_SETCHECK, dialog.fixedFonts ? BST_CHECKED : BST_UNCHECKED, 0); break;
        case Choice: {
            const int last = static_cast<int>(ItemAt(place).choices.size()) - 1;
            SendMessageW(field, CB_SETCURSEL, static_cast<WPARAM>(std::clamp(NumberOf(text), 0, last)), 0);
            break;
        }
        case Font:
        case Language: ChooseText(field, text); break;
        case Exceptions: SetTextIfOther(field, ExceptionsSummary(text)); break;
        case SettingsFile: SetTextIfOther(field, SettingsFilePath()); break;
        case CommandPreview:
            SetTextIfOther(field, CommandPreviewOf(static_cast<std::uint32_t>(SettingsPages()[place.page].compiler),
                                                   *DraftOf(dialog)));
            break;
        case FontPreview: InvalidateRect(field, nullptr, FALSE); break;
        case DefaultProgram: {
            ItemWindows& windows = WindowsAt(dialog, place);
            windows.seen = SettingsDefaultProgram(place, &windows.seenKind);
            break;
        }
        case CompilerTest:
        case Detect:
        case ConnectionTest:
        case CopyKeys:
        case Keys: break;
        default: SetTextIfOther(field, text); break;
    }
    const HWND button = WindowsAt(dialog, place).parts[kPartButton];
    if (ItemAt(place).control == Colour) InvalidateRect(button, nullptr, FALSE);
}

std::wstring SettingsFieldText(SettingsDialog& dialog, FormPlace place, bool chosen) {
    const HWND field = WindowsAt(dialog, place).parts[kPartField];
    switch (ItemAt(place).control) {
        case Check: return SendMessageW(field, BM_GETCHECK, 0, 0) == BST_CHECKED ? L"1" : L"0";
        case Choice: return std::to_wstring(SendMessageW(field, CB_GETCURSEL, 0, 0));
        case Font:
        case Language: return ChosenLine(field);
        case Model: return chosen ? ChosenLine(field) : WindowText(field);
        case Exceptions: return TextAt(dialog, place);
        default: return WindowText(field);
    }
}

void SettingsFieldPress(SettingsDialog& dialog, FormPlace place) {
    switch (ItemAt(place).control) {
        case File: return BrowseForFile(dialog, place);
        case SettingControl::Folder: return BrowseForFolder(dialog, place);
        case Colour: return ChooseColour(dialog, place);
        case Secret: return ShowOrHideSecret(dialog, place);
        case Exceptions: return ChangeExceptions(dialog, place);
        case Model: return SettingsAskService(dialog, place);
        case CompilerTest: return SettingsTestCompiler(dialog, place);
        case DefaultProgram: return SettingsChangeDefaultProgram(dialog, place);
        case ConnectionTest: return SettingsAskService(dialog, place);
        case CopyKeys: return CopyKeyList(dialog, place);
        case Detect: return SettingsDetectCompilers(dialog, place);
        default: return;
    }
}

void SettingsFieldDraw(SettingsDialog& dialog, FormPlace place, const DRAWITEMSTRUCT& draw) {
    if (ItemAt(place).control == Colour) return DrawColour(dialog, place, draw);
    DrawSample(dialog, draw);
}

void SettingsFontsFill(SettingsDialog& dialog, std::size_t page) {
    std::vector<std::wstring> names;  // looked for when the page has a list of fonts
    const bool before = dialog.filling;
    dialog.filling = true;
    for (std::size_t i = 0; i < dialog.pages[page].items.size(); ++i) {
        if (ItemAt({page, i}).control != Font) continue;
        if (names.empty()) names = FontNames(dialog.fixedFonts);
        FillFontList(dialog.pages[page].items[i].parts[kPartField], names);
        SettingsFieldShow(dialog, {page, i});
    }
    dialog.filling = before;
}
