// Gives the system the colours of one of its high-contrast schemes for a scope, and its controls the plain looks that take
// them. Programs that are started meanwhile see both. The mode itself cannot be switched on under Wine.
#pragma once

#include <windows.h>

#include <vector>

class SystemScheme {
public:
    enum Kind { kUsual, kBlack, kWhite };
    explicit SystemScheme(Kind kind) {
        if (kind == kUsual) return;
        constexpr COLORREF kBlackColour = RGB(0, 0, 0), kWhiteColour = RGB(255, 255, 255);
        const COLORREF back = kind == kBlack ? kBlackColour : kWhiteColour;
        const COLORREF text = kind == kBlack ? kWhiteColour : kBlackColour;
        const COLORREF off = kind == kBlack ? RGB(63, 242, 63) : RGB(96, 0, 0);
        const COLORREF chosen = kind == kBlack ? RGB(26, 235, 255) : RGB(55, 0, 110);
        for (const int index : {COLOR_WINDOW, COLOR_BTNFACE, COLOR_MENU, COLOR_MENUBAR, COLOR_INFOBK, COLOR_SCROLLBAR,
                                COLOR_ACTIVECAPTION, COLOR_GRADIENTACTIVECAPTION})
            Put(index, back);
        for (const int index : {COLOR_WINDOWTEXT, COLOR_BTNTEXT, COLOR_MENUTEXT, COLOR_INFOTEXT, COLOR_CAPTIONTEXT,
                                COLOR_WINDOWFRAME, COLOR_3DDKSHADOW, COLOR_3DLIGHT})
            Put(index, text);
        for (const int index : {COLOR_HIGHLIGHT, COLOR_MENUHILIGHT}) Put(index, chosen);
        Put(COLOR_HIGHLIGHTTEXT, back);
        Put(COLOR_GRAYTEXT, off);
        Put(COLOR_BTNSHADOW, RGB(128, 128, 128));
        Put(COLOR_BTNHIGHLIGHT, RGB(192, 192, 192));
        for (const int index : indices_) before_.push_back(GetSysColor(index));
        SetSysColors(static_cast<int>(indices_.size()), indices_.data(), colours_.data());
        SetVisualStyle(L"0");
    }
    ~SystemScheme() {
        if (indices_.empty()) return;
        SetSysColors(static_cast<int>(indices_.size()), indices_.data(), before_.data());
        SetVisualStyle(L"1");
    }
    SystemScheme(const SystemScheme&) = delete;
    SystemScheme& operator=(const SystemScheme&) = delete;

private:
    void Put(int index, COLORREF colour) {
        indices_.push_back(index);
        colours_.push_back(colour);
    }
    static void SetVisualStyle(const wchar_t* on) {
        RegSetKeyValueW(HKEY_CURRENT_USER, L"Software\\Microsoft\\Windows\\CurrentVersion\\ThemeManager",
                        L"ThemeActive", REG_SZ, on, 2 * sizeof(wchar_t));
    }

    std::vector<int> indices_;
    std::vector<COLORREF> colours_, before_;
};
