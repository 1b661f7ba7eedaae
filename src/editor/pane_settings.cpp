// The [Editor] settings as messages to Scintilla. Pure.
#include "editor/pane_settings.h"

#include <Scintilla.h>

#include <algorithm>

namespace {

constexpr int kLeastZoom = -10;  // those at which Scintilla's own zooming stops
constexpr int kMostZoom = 60;
constexpr int kWidestTab = 256;
constexpr int kDwellTime = 500;  // ms without mouse movement before SCN_DWELLSTART
constexpr int kEdgeColumn = 80;
constexpr std::intptr_t kEdgeColour = 0x808080;
constexpr int kVirtualSpace = 7;  // rectangular selection, user accessible, no wrap at the line start

constexpr std::intptr_t KeyOf(int key, int modifiers) { return key | modifiers << 16; }

void Append(PaneSettings& out, const PaneSettings& more) { out.insert(out.end(), more.begin(), more.end()); }

}  // namespace

const int kPaneEvents = SC_MOD_INSERTTEXT | SC_MOD_DELETETEXT | SC_MOD_CONTAINER;

const EditorMessages& PaneSetUpMessages() {
    static const EditorMessages kMessages = {
        {SCI_SETCODEPAGE, SC_CP_UTF8},
        {SCI_SETMODEVENTMASK, kPaneEvents},
        {SCI_SETCOMMANDEVENTS, 0},
        {SCI_SETLAYOUTCACHE, SC_CACHE_PAGE},
        // The pane itself colours visible text before a paint, and the rest by a timer in small slices.
        {SCI_SETIDLESTYLING, SC_IDLESTYLING_NONE},
        {SCI_SETSCROLLWIDTH, 1},
        {SCI_SETSCROLLWIDTHTRACKING, 1},
        {SCI_SETFONTQUALITY, SC_EFF_QUALITY_LCD_OPTIMIZED},
        {SCI_SETMULTIPLESELECTION, 1},
        {SCI_SETADDITIONALSELECTIONTYPING, 1},
        {SCI_SETMULTIPASTE, SC_MULTIPASTE_EACH},
        {SCI_SETTABINDENTS, 1},
        {SCI_USEPOPUP, SC_POPUP_NEVER},  // the main window has a menu for it
        {SCI_SETMOUSEDWELLTIME, kDwellTime},
        // Keys of commands of the program, for which Scintilla has another use.
        {SCI_CLEARCMDKEY, KeyOf('/', SCMOD_CTRL)},
        {SCI_CLEARCMDKEY, KeyOf('[', SCMOD_CTRL | SCMOD_SHIFT)},
        {SCI_CLEARCMDKEY, KeyOf(']', SCMOD_CTRL | SCMOD_SHIFT)},
        {SCI_CLEARCMDKEY, KeyOf(SCK_ADD, SCMOD_CTRL)},
        {SCI_CLEARCMDKEY, KeyOf(SCK_SUBTRACT, SCMOD_CTRL)},
        {SCI_CLEARCMDKEY, KeyOf(SCK_DIVIDE, SCMOD_CTRL)},
        {SCI_CLEARCMDKEY, KeyOf('L', SCMOD_CTRL | SCMOD_SHIFT)},
        {SCI_CLEARCMDKEY, KeyOf('T', SCMOD_CTRL)},
        {SCI_CLEARCMDKEY, KeyOf('T', SCMOD_CTRL | SCMOD_SHIFT)},
        {SCI_CLEARCMDKEY, KeyOf('D', SCMOD_CTRL)},
        {SCI_CLEARCMDKEY, KeyOf('U', SCMOD_CTRL)},
        {SCI_CLEARCMDKEY, KeyOf('U', SCMOD_CTRL | SCMOD_SHIFT)},
    };
    return kMessages;
}

PaneSettings EdgeLineSettings(bool on) {
    if (!on) return {{SCI_GETEDGEMODE, SCI_SETEDGEMODE, EDGE_NONE}};
    return {{SCI_GETEDGECOLUMN, SCI_SETEDGECOLUMN, kEdgeColumn},
            {SCI_GETEDGECOLOUR, SCI_SETEDGECOLOUR, kEdgeColour},
            {SCI_GETEDGEMODE, SCI_SETEDGEMODE, EDGE_LINE}};
}

PaneSettings VirtualSpaceSettings(bool on) {
    return {{SCI_GETVIRTUALSPACEOPTIONS, SCI_SETVIRTUALSPACEOPTIONS, on ? kVirtualSpace : SCVS_NONE}};
}

PaneSettings PaneSettingsOf(const Settings& settings, bool plain) {
    PaneSettings out;
    // The setting may be 0 or less, which Scintilla does not take as a tab width.
    if (settings.tabWidth > 0) {
        const int width = std::min<int>(settings.tabWidth, kWidestTab);
        out.push_back({SCI_GETTABWIDTH, SCI_SETTABWIDTH, width});
        out.push_back({SCI_GETINDENT, SCI_SETINDENT, width});
    }
    out.push_back({SCI_GETUSETABS, SCI_SETUSETABS, settings.useTabs != 0});
    out.push_back({SCI_GETZOOM, SCI_SETZOOM, std::clamp<int>(settings.editorZoom, kLeastZoom, kMostZoom)});
    out.push_back({SCI_GETEDGECOLUMN, SCI_SETEDGECOLUMN, settings.edgeColumn});
    // Replaces the column just set: the line is at column 80 or absent.
    Append(out, EdgeLineSettings(settings.showEdgeLine != 0));
    Append(out, VirtualSpaceSettings(settings.enableVirtualSpace != 0));
    const bool wrap = settings.wordWrap != 0 && !plain;
    out.push_back({SCI_GETWRAPMODE, SCI_SETWRAPMODE, wrap ? SC_WRAP_WORD : SC_WRAP_NONE});
    out.push_back({SCI_GETVIEWWS, SCI_SETVIEWWS, settings.showWhitespace != 0 ? SCWS_VISIBLEALWAYS : SCWS_INVISIBLE});
    out.push_back({SCI_GETINDENTATIONGUIDES, SCI_SETINDENTATIONGUIDES,
                   settings.showIndentGuides != 0 ? SC_IV_LOOKBOTH : SC_IV_NONE});
    return out;
}

PaneSettings CaretSettings(std::uint32_t colour) {
    return {{SCI_GETCARETSTYLE, SCI_SETCARETSTYLE, CARETSTYLE_BLOCK},
            {SCI_GETCARETFORE, SCI_SETCARETFORE, static_cast<std::intptr_t>(colour)},
            {SCI_GETCARETWIDTH, SCI_SETCARETWIDTH, 4},
            {SCI_GETCARETPERIOD, SCI_SETCARETPERIOD, 0},
            {SCI_GETCARETLINEVISIBLE, SCI_SETCARETLINEVISIBLE, 1}};
}
