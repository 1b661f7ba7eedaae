// The toolbar: buttons from one table, pictures drawn for the current theme and DPI. UI thread only.
#include "toolbar/toolbar.h"

#include "app/app_state.h"
#include "app/shell.h"
#include "compilers/compiler_table.h"
#include "files/wide_format.h"
#include "language/theme.h"
#include "resources/ids.h"
#include "toolbar/command_state.h"
#include "toolbar/icons.h"

#include <commctrl.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <optional>
#include <string>

namespace {

// A button that is not always there: shown while one of these conditions holds.
constexpr std::uint32_t kShownAlways = 0;

struct ButtonRow {
    int command;  // 0: a gap between groups
    Icon icon = Icon::New;
    bool showsState = false;
    const wchar_t* tip = nullptr;  // for commands that no menu names
    std::uint32_t shownWhen = kShownAlways;
    std::uint32_t hiddenWhen = 0;  // and none of these
};

constexpr ButtonRow kButtons[] = {
    {IDM_FILE_NEW, Icon::New},
    {IDM_FILE_OPEN, Icon::Open},
    {IDM_FILE_SAVE, Icon::Save},
    {IDM_FILE_SAVE_ALL, Icon::SaveAll},
    {0},
    {IDM_EDIT_UNDO, Icon::Undo},
    {IDM_EDIT_REDO, Icon::Redo},
    {0},
    {IDM_EDIT_CUT, Icon::Cut},
    {IDM_EDIT_COPY, Icon::Copy},
    {IDM_EDIT_PASTE, Icon::Paste},
    {IDM_EDIT_FIND, Icon::Find},
    {0},
    {IDM_COMPILER_MENU},
    {IDM_BUILD, Icon::Build},
    {IDM_BUILD_RUN, Icon::Run},
    {IDM_BUILD_STOP, Icon::Stop},
    {IDM_BUILD_SYNTAX, Icon::SyntaxCheck},
    {IDM_ERROR_PREVIOUS, Icon::PreviousError, false, L"Previous Error (Shift+F4)"},
    {IDM_ERROR_NEXT, Icon::NextError, false, L"Next Error (F4)"},
    {0},
    // Of the debugger only what fits the moment. Steps stay while the program runs: a row of buttons that came and went
    // with every step would flicker.
    {IDM_DEBUG_BUTTON_START, Icon::DebugStart, false, L"Build and Debug", kNoSession},
    {IDM_DEBUG_BREAKPOINT, Icon::Breakpoint, false, nullptr, kNoSession},
    {IDM_DEBUG_BUTTON_STOP, Icon::DebugStop, false, L"Stop Debugging (Shift+F5)", kSession},
    {IDM_DEBUG_CONTINUE, Icon::Continue, false, nullptr, kSession, kProgramRunning},
    {IDM_DEBUG_PAUSE, Icon::Pause, false, nullptr, kProgramRunning},
    {IDM_DEBUG_BUTTON_STEP_OVER, Icon::StepOver, false, L"Step Over (F10)", kSession},
    {IDM_DEBUG_BUTTON_STEP_INTO, Icon::StepInto, false, L"Step Into (F11)", kSession},
    {IDM_DEBUG_BUTTON_STEP_OUT, Icon::StepOut, false, L"Step Out (Shift+F11)", kSession},
    {IDM_DEBUG_RUN_TO_CURSOR, Icon::RunToCursor, false, nullptr, kSession},
    {0},
    {IDM_VIEW_OUTPUT, Icon::Output, true},
    {IDM_VIEW_ASM, Icon::AsmPane, true},
    {IDM_VIEW_AI, Icon::Ai, true},
};

constexpr int kIconSize = 16;
constexpr int kButtonSize = 28;
constexpr int kBarPadding = 3;
constexpr int kGap = 9;
constexpr int kArrowWidth = 48;  // the arrow of the compiler button and the air around its text

HIMAGELIST g_images = nullptr;
HIMAGELIST g_disabledImages = nullptr;
std::optional<CommandView> g_applied;  // what the buttons show; nothing: not known

int Scaled(int length) { return MulDiv(length, g_app.dpi, 96); }

IconInks InksOfTheme(bool enabled) {
    if (!enabled) {
        const std::uint32_t grey = ThemeIsDark() ? 0x5C6068 : 0xB4BAC6;
        const std::uint32_t fill = ThemeIsDark() ? 0x2A2D33 : 0xF1F3F9;
        return {.line = grey, .accent = grey, .go = grey, .stop = grey, .fill = fill};
    }
    if (ThemeIsDark())
        return {.line = 0xC8CCD4, .accent = 0x6CB2F5, .go = 0x6CC77A, .stop = 0xF07470, .fill = 0x33373E};
    return {.line = 0x4A5468, .accent = 0x1F6FD0, .go = 0x238A3A, .stop = 0xCC3A33, .fill = 0xFFFFFF};
}

HBITMAP BitmapOf(const std::vector<std::uint32_t>& pixels, int size) {
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = size;
    info.bmiHeader.biHeight = -size;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (bitmap != nullptr) std::memcpy(bits, pixels.data(), pixels.size() * sizeof(pixels[0]));
    return bitmap;
}

HIMAGELIST RenderImages(bool enabled) {
    const int size = Scaled(kIconSize);
    HIMAGELIST images = ImageList_Create(size, size, ILC_COLOR32, static_cast<int>(std::size(kButtons)), 0);
    const IconInks inks = InksOfTheme(enabled);
    for (const ButtonRow& row : kButtons) {
        if (row.command == 0 || row.command == IDM_COMPILER_MENU) continue;
        HBITMAP bitmap = BitmapOf(RenderIcon(row.icon, size, inks), size);
        ImageList_Add(images, bitmap, nullptr);
        DeleteObject(bitmap);
    }
    return images;
}

std::wstring CompilerButtonText() {
    const auto id = static_cast<std::uint32_t>(g_app.settings.activeCompiler);
    return FormatW(CompilerExists(id) ? L"%s" : L"%s (not found)", CompilerName(id));
}

void AddButtons(HWND bar) {
    int image = 0;
    const std::wstring compilerText = CompilerButtonText();
    for (const ButtonRow& row : kButtons) {
        TBBUTTON button = {};
        button.fsState = TBSTATE_ENABLED;
        button.idCommand = row.command;
        if (row.command == 0) {
            button.fsStyle = BTNS_SEP;
            button.iBitmap = kGap;
        } else if (row.command == IDM_COMPILER_MENU) {
            button.fsStyle = BTNS_SHOWTEXT | BTNS_WHOLEDROPDOWN;
            button.iBitmap = I_IMAGENONE;
            button.iString = reinterpret_cast<INT_PTR>(compilerText.c_str());
        } else {
            button.fsStyle = row.showsState ? BTNS_CHECK : BTNS_BUTTON;
            button.iBitmap = image++;
        }
        SendMessageW(bar, TB_ADDBUTTONSW, 1, reinterpret_cast<LPARAM>(&button));
    }
}

int TextWidth(HWND window, const std::wstring& text) {
    HDC dc = GetDC(window);
    HGDIOBJ old = SelectObject(dc, UiFont());
    SIZE size = {};
    GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &size);
    SelectObject(dc, old);
    ReleaseDC(window, dc);
    return static_cast<int>(size.cx);
}

// Each button its own width: left to itself the control makes all of them as wide as the one with text.
void SizeButtons() {
    for (const ButtonRow& row : kButtons) {
        if (row.command == 0) continue;
        TBBUTTONINFOW info = {};
        info.cbSize = sizeof(info);
        info.dwMask = TBIF_SIZE;
        const int width = row.command == IDM_COMPILER_MENU
                              ? TextWidth(g_app.hToolbar, CompilerButtonText()) + Scaled(kArrowWidth)
                              : Scaled(kButtonSize);
        info.cx = static_cast<WORD>(width);
        SendMessageW(g_app.hToolbar, TB_SETBUTTONINFOW, static_cast<WPARAM>(row.command),
                     reinterpret_cast<LPARAM>(&info));
    }
}

void ShowCompilerMenu(const RECT& button) {
    HMENU menu = CreatePopupMenu();
    for (std::uint32_t id = 0; id < kCompilerCount; ++id) {
        const std::wstring text = FormatW(CompilerExists(id) ? L"%s" : L"%s (not found)", CompilerName(id));
        const UINT checked = static_cast<int>(id) == g_app.settings.activeCompiler ? MF_CHECKED : MF_UNCHECKED;
        AppendMenuW(menu, MF_STRING | checked, static_cast<UINT_PTR>(CompilerEntry(id).command), text.c_str());
    }
    AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
    constexpr struct {
        int command;
        const wchar_t* text;
    } kProfiles[] = {{IDM_PROFILE_DEBUG, L"Profile: Debug"},
                     {IDM_PROFILE_RELEASE, L"Profile: Release"},
                     {IDM_PROFILE_FAST, L"Profile: Fast"}};
    for (const auto& profile : kProfiles) {
        const bool checked = profile.command - IDM_PROFILE_DEBUG == g_app.settings.profile;
        AppendMenuW(menu, MF_STRING | (checked ? MF_CHECKED : MF_UNCHECKED), static_cast<UINT_PTR>(profile.command),
                    profile.text);
    }
    AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
    const bool canBuild = CommandStateOf(IDM_BUILD_ALL, CurrentCommandView()).enabled;
    AppendMenuW(menu, MF_STRING | (canBuild ? MF_ENABLED : MF_GRAYED), IDM_BUILD_ALL, L"Build All Open Sources");
    POINT at = {button.left, button.bottom};
    ClientToScreen(g_app.hToolbar, &at);
    TrackPopupMenu(menu, TPM_LEFTALIGN | TPM_TOPALIGN, at.x, at.y, 0, g_app.hMainWnd, nullptr);
    DestroyMenu(menu);
}

LRESULT DrawBar(const NMTBCUSTOMDRAW& draw) {
    const ThemeChrome& chrome = ThemeCurrentChrome();
    switch (draw.nmcd.dwDrawStage) {
        case CDDS_PREPAINT: return CDRF_NOTIFYITEMDRAW;
        case CDDS_ITEMPREPAINT: {
            auto& item = const_cast<NMTBCUSTOMDRAW&>(draw);
            item.clrText = chrome.statusText;
            item.clrTextHighlight = chrome.statusText;
            item.clrHighlightHotTrack = chrome.hover;
            if ((draw.nmcd.uItemState & (CDIS_CHECKED | CDIS_HOT | CDIS_SELECTED)) != 0) {
                FillArea(draw.nmcd.hdc, draw.nmcd.rc, chrome.hover);
            }
            return TBCDRF_NOBACKGROUND | TBCDRF_NOEDGES | TBCDRF_NOOFFSET | TBCDRF_USECDCOLORS;
        }
        default: return CDRF_DODEFAULT;
    }
}

std::wstring TipOf(int command) {
    for (const ButtonRow& row : kButtons) {
        if (row.command == command && row.tip != nullptr) return row.tip;
    }
    if (command == IDM_COMPILER_MENU) return L"Compiler and build profile";
    wchar_t text[128] = {};
    GetMenuStringW(GetMenu(g_app.hMainWnd), static_cast<UINT>(command), text, static_cast<int>(std::size(text)),
                   MF_BYCOMMAND);
    return CommandTipFromMenuText(text);
}

// The bar's own background follows the theme; the control has no colour of its own for it.
// Stop takes the place of Start: the second half of a double-click on that was not meant for it.
bool IsSecondClickOnStop(HWND bar, UINT message, LPARAM lParam) {
    if (message != WM_LBUTTONDBLCLK) return false;
    POINT at = {static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
    RECT stop = {};
    return SendMessageW(bar, TB_GETRECT, IDM_DEBUG_BUTTON_STOP, reinterpret_cast<LPARAM>(&stop)) != 0 &&
           PtInRect(&stop, at) != FALSE;
}

LRESULT CALLBACK ToolbarProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR) {
    if (message == WM_ERASEBKGND) {
        const ThemeChrome& chrome = ThemeCurrentChrome();
        RECT area = {};
        GetClientRect(window, &area);
        FillArea(reinterpret_cast<HDC>(wParam), area, chrome.statusBack);
        area.top = area.bottom - 1;
        FillArea(reinterpret_cast<HDC>(wParam), area, chrome.line);
        return 1;
    }
    if (IsSecondClickOnStop(window, message, lParam)) return 0;
    if (message == WM_LBUTTONUP) g_applied.reset();  // a click turns a check button over by itself
    if (message == WM_NCDESTROY) RemoveWindowSubclass(window, ToolbarProc, 1);
    return DefSubclassProc(window, message, wParam, lParam);
}

}  // namespace

HWND ToolbarCreate(HWND parent, int controlId) {
    HWND bar = CreateWindowExW(
        0, TOOLBARCLASSNAMEW, nullptr,
        WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | TBSTYLE_FLAT | TBSTYLE_LIST | TBSTYLE_TOOLTIPS | TBSTYLE_TRANSPARENT |
            CCS_NORESIZE | CCS_NODIVIDER | CCS_NOPARENTALIGN,
        0, 0, 0, 0, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(controlId)), g_app.hInstance, nullptr);
    if (bar == nullptr) return nullptr;
    SendMessageW(bar, TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON), 0);
    SendMessageW(bar, TB_SETEXTENDEDSTYLE, 0, TBSTYLE_EX_MIXEDBUTTONS | TBSTYLE_EX_DOUBLEBUFFER);
    SetWindowSubclass(bar, ToolbarProc, 1, 0);
    AddButtons(bar);
    return bar;
}

void ToolbarApplyTheme() {
    if (g_app.hToolbar == nullptr) return;
    HIMAGELIST oldImages = g_images;
    HIMAGELIST oldDisabled = g_disabledImages;
    g_images = RenderImages(true);
    g_disabledImages = RenderImages(false);
    SendMessageW(g_app.hToolbar, TB_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(g_images));
    SendMessageW(g_app.hToolbar, TB_SETDISABLEDIMAGELIST, 0, reinterpret_cast<LPARAM>(g_disabledImages));
    SendMessageW(g_app.hToolbar, TB_SETINDENT, static_cast<WPARAM>(Scaled(kBarPadding)), 0);
    SendMessageW(g_app.hToolbar, TB_SETBUTTONSIZE, 0, MAKELPARAM(Scaled(kButtonSize), Scaled(kButtonSize)));
    SendMessageW(g_app.hToolbar, WM_SETFONT, reinterpret_cast<WPARAM>(UiFont()), FALSE);
    ToolbarUpdateCompiler();
    SizeButtons();
    if (oldImages != nullptr) ImageList_Destroy(oldImages);
    if (oldDisabled != nullptr) ImageList_Destroy(oldDisabled);
    InvalidateRect(g_app.hToolbar, nullptr, TRUE);
}

void ToolbarDestroyImages() {
    if (g_images != nullptr) ImageList_Destroy(g_images);
    if (g_disabledImages != nullptr) ImageList_Destroy(g_disabledImages);
    g_images = g_disabledImages = nullptr;
}

void ToolbarUpdateCompiler() {
    const std::wstring text = CompilerButtonText();
    wchar_t shown[128] = {};
    TBBUTTONINFOW info = {};
    info.cbSize = sizeof(info);
    info.dwMask = TBIF_TEXT;
    info.pszText = shown;
    info.cchText = static_cast<int>(std::size(shown));
    SendMessageW(g_app.hToolbar, TB_GETBUTTONINFOW, IDM_COMPILER_MENU, reinterpret_cast<LPARAM>(&info));
    if (text == shown) return;
    info.pszText = const_cast<wchar_t*>(text.c_str());
    SendMessageW(g_app.hToolbar, TB_SETBUTTONINFOW, IDM_COMPILER_MENU, reinterpret_cast<LPARAM>(&info));
    SizeButtons();
    InvalidateRect(g_app.hToolbar, nullptr, TRUE);
}

void ToolbarUpdateAi() {
    SendMessageW(g_app.hToolbar, TB_CHECKBUTTON, IDM_VIEW_AI, MAKELPARAM(g_app.settings.showAiSidebar, 0));
}

static void ApplyVisibility(const CommandView& view) {
    for (const ButtonRow& row : kButtons) {
        if (row.command == 0 || row.shownWhen == kShownAlways) continue;
        const bool shown = (view.conditions & row.shownWhen) != 0 && (view.conditions & row.hiddenWhen) == 0;
        const auto id = static_cast<WPARAM>(row.command);
        const bool now = SendMessageW(g_app.hToolbar, TB_ISBUTTONHIDDEN, id, 0) == 0;
        if (shown != now) SendMessageW(g_app.hToolbar, TB_HIDEBUTTON, id, MAKELPARAM(shown ? FALSE : TRUE, 0));
    }
}

void ToolbarApplyState(const CommandView& view) {
    // Called at every key, and asking each button costs more than the key itself.
    if (g_applied == view) return;
    g_applied = view;
    ApplyVisibility(view);
    for (const ButtonRow& row : kButtons) {
        if (row.command == 0) continue;
        const CommandState state = CommandStateOf(row.command, view);
        const LRESULT now = SendMessageW(g_app.hToolbar, TB_GETSTATE, static_cast<WPARAM>(row.command), 0);
        const LRESULT kept = now & ~static_cast<LRESULT>(TBSTATE_ENABLED | TBSTATE_CHECKED);
        const LRESULT wanted =
            kept | (state.enabled ? TBSTATE_ENABLED : 0) | (row.showsState && state.checked ? TBSTATE_CHECKED : 0);
        if (wanted != now)
            SendMessageW(g_app.hToolbar, TB_SETSTATE, static_cast<WPARAM>(row.command), MAKELPARAM(wanted, 0));
    }
}

int ToolbarInset() {
    const int buttons = HIWORD(SendMessageW(g_app.hToolbar, TB_GETBUTTONSIZE, 0, 0));
    return std::max(0, (ToolbarHeight() - 1 - buttons) / 2);
}

int ToolbarHeight() { return Scaled(kButtonSize + 2 * kBarPadding); }

bool ToolbarHandleNotify(const NMHDR& header, LRESULT* result) {
    if (header.code == TTN_GETDISPINFOW) {
        auto& tip = *reinterpret_cast<NMTTDISPINFOW*>(const_cast<NMHDR*>(&header));
        if ((tip.uFlags & TTF_IDISHWND) != 0 || FindCommand(static_cast<int>(header.idFrom)) == nullptr) return false;
        const std::wstring text = TipOf(static_cast<int>(header.idFrom));
        const std::size_t length = std::min(text.size(), std::size(tip.szText) - 1);
        text.copy(tip.szText, length);
        tip.szText[length] = L'\0';
        tip.lpszText = tip.szText;
        return true;
    }
    if (header.hwndFrom != g_app.hToolbar || g_app.hToolbar == nullptr) return false;
    if (header.code == NM_CUSTOMDRAW) {
        *result = DrawBar(reinterpret_cast<const NMTBCUSTOMDRAW&>(header));
        return true;
    }
    if (header.code == TBN_DROPDOWN) {
        RECT button = {};
        SendMessageW(g_app.hToolbar, TB_GETRECT, IDM_COMPILER_MENU, reinterpret_cast<LPARAM>(&button));
        ShowCompilerMenu(button);
        *result = TBDDRET_DEFAULT;
        return true;
    }
    return false;
}
