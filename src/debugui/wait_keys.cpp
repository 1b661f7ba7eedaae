// Keys during a wait. Must not know a window.
#include "debugui/wait_keys.h"

#include <algorithm>
#include <span>

namespace {

// Virtual keys.
enum Key : std::uint32_t {
    kCancel = 0x03,
    kBackspace = 0x08,
    kTab = 0x09,
    kReturn = 0x0D,
    kShift = 0x10,
    kControl = 0x11,
    kAlt = 0x12,
    kCapsLock = 0x14,
    kEscape = 0x1B,
    kPageUp = 0x21,
    kPageDown = 0x22,
    kEnd = 0x23,
    kHome = 0x24,
    kLeft = 0x25,
    kUp = 0x26,
    kRight = 0x27,
    kDown = 0x28,
    kInsert = 0x2D,
    kDelete = 0x2E,
    kLeftWindows = 0x5B,
    kRightWindows = 0x5C,
    kF5 = 0x74,
    kNumLock = 0x90,
    kScrollLock = 0x91,
    kPacket = 0xE7,  // text that a program sends
};

// Keys by which any line of text is edited. Control and Shift belong to them.
constexpr std::uint32_t kFieldKeys[] = {kLeft, kRight, kHome, kEnd, kBackspace, kDelete, kInsert};
constexpr std::uint32_t kEditorKeys[] = {kUp, kDown, kPageUp, kPageDown};
constexpr std::uint32_t kBreakKeys[] = {kReturn, kTab};
constexpr std::uint32_t kModifiers[] = {kControl,      kShift,    kAlt,     kLeftWindows,
                                        kRightWindows, kCapsLock, kNumLock, kScrollLock};
constexpr std::uint32_t kEditorCommands[] = {'A', 'C', 'V', 'X', 'Y', 'Z'};  // with Control

bool IsOneOf(std::span<const std::uint32_t> keys, std::uint32_t key) {
    return std::ranges::find(keys, key) != keys.end();
}

bool IsStopKey(const WaitKey& key) {
    return !key.system && (key.key == kEscape || key.key == kCancel || (key.key == kF5 && key.shift));
}

bool IsEditorCommand(const WaitKey& key) {
    return key.inEditor && key.control && !key.shift && !key.alt && IsOneOf(kEditorCommands, key.key);
}

bool EditsText(const WaitKey& key) {
    if (key.system || key.alt) return false;
    if (IsOneOf(kFieldKeys, key.key)) return key.inEditor || key.inField;
    return key.inEditor && (IsOneOf(kEditorKeys, key.key) || (IsOneOf(kBreakKeys, key.key) && !key.control));
}

// True for a key whose character is text. AltGr is Control with Alt.
bool BringsText(const WaitKey& key) { return key.control == key.alt && (key.key == kPacket || key.makesCharacter); }

}  // namespace

WaitKeyAction ActionOfWaitKey(const WaitKey& key) {
    if (IsStopKey(key)) return WaitKeyAction::Stop;
    if (IsEditorCommand(key)) return WaitKeyAction::EditorCommand;
    if (IsOneOf(kModifiers, key.key)) return WaitKeyAction::Drop;
    if (EditsText(key) && (key.inEditor || !key.earlierKeyWaits)) return WaitKeyAction::Handle;
    return BringsText(key) ? WaitKeyAction::Translate : WaitKeyAction::PutOff;
}

WaitCharacter ActionOfWaitCharacter(std::uint32_t character, bool inEditor, bool inField, bool earlierKeyWaits) {
    constexpr std::uint32_t kFirstCharacter = 32;
    if (character < kFirstCharacter) return WaitCharacter::Drop;
    if (inEditor) return WaitCharacter::Handle;
    if (!inField) return WaitCharacter::Drop;
    // An earlier key for a field may have been Enter.
    return earlierKeyWaits ? WaitCharacter::PutOff : WaitCharacter::Handle;
}
