// Reading a file into a tab's editor. A large UTF-8 file goes in piece by piece, so that it is never in memory twice;
// everything else goes through the files area. UI thread.
#include "documents/document_load.h"

#include "base/handles.h"
#include "documents/editor_pane.h"
#include "files/file_io.h"
#include "files/text_encoding.h"
#include "scintilla/sci.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace {

constexpr LONGLONG kLarge = 4 << 20;              // below this one block is simpler and no slower
constexpr LONGLONG kLargestStreamed = INT32_MAX;  // positions are 32 bits beyond this program's use
constexpr std::size_t kPiece = 1 << 20;

// Length of the part of `bytes` that ends between characters: what is cut off at the end, at most three bytes of a
// sequence, belongs to the next piece.
std::size_t WholeCharacters(const char* bytes, std::size_t length) {
    std::size_t back = 0;
    while (back < 3 && back < length) {
        const auto byte = static_cast<unsigned char>(bytes[length - 1 - back]);
        ++back;
        if (byte < 0x80) return length;
        if (byte < 0xC0) continue;
        const std::size_t needs = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : 2;
        return needs > back ? length - back : length;
    }
    return length;
}

enum class Streamed { Done, NotUtf8, Failed };

// The first break, wherever it lies: a CR at the very end of a piece waits for the byte after it.
struct BreakSearch {
    bool found = false;
    bool pendingCr = false;
    LineEnding ending = LineEnding::CrLf;
};

void LookForBreak(BreakSearch& search, const char* bytes, std::size_t length) {
    if (search.found || length == 0) return;
    if (search.pendingCr) {
        search.ending = bytes[0] == '\n' ? LineEnding::CrLf : LineEnding::Cr;
        search.found = true;
        return;
    }
    for (std::size_t i = 0; i < length; ++i) {
        if (bytes[i] != '\r' && bytes[i] != '\n') continue;
        if (bytes[i] == '\r' && i + 1 == length) {
            search.pendingCr = true;
            search.ending = LineEnding::Cr;
            return;
        }
        search.ending = DetectLineEnding(bytes + i, length - i);
        search.found = true;
        return;
    }
}

// A document that Scintilla found no memory for is cut short; saving it would cut the file.
bool HoldsAll(HWND editor, std::size_t length) {
    return static_cast<std::size_t>(SciSend(editor, SCI_GETLENGTH)) == length;
}

Streamed StreamFile(DocumentTab& tab, HANDLE file, std::size_t size) {
    const auto piece = std::make_unique<char[]>(kPiece + 4);
    std::size_t kept = 0;  // bytes of an unfinished character, at the start of the piece
    std::size_t total = 0;
    BreakSearch breaks;
    EditorPaneBeginLoad(tab.editor, size);
    for (;;) {
        DWORD read = 0;
        if (!ReadFile(file, piece.get() + kept, static_cast<DWORD>(kPiece), &read, nullptr)) return Streamed::Failed;
        const std::size_t length = kept + read;
        if (length == 0) break;
        const std::size_t whole = read == 0 ? length : WholeCharacters(piece.get(), length);
        if (!IsValidUtf8Bytes(piece.get(), whole)) return Streamed::NotUtf8;
        LookForBreak(breaks, piece.get(), whole);
        EditorPaneAppendLoad(tab.editor, {piece.get(), whole});
        total += whole;
        if (read == 0) break;
        kept = length - whole;
        std::copy(piece.get() + whole, piece.get() + length, piece.get());
    }
    EditorPaneEndLoad(tab.editor);
    if (!HoldsAll(tab.editor, total)) return Streamed::Failed;
    tab.encoding = TextEncoding::Utf8;
    tab.lineEnding = breaks.ending;
    return Streamed::Done;
}

// True when the file was taken this way; otherwise nothing is decided yet.
bool TryStream(DocumentTab& tab) {
    const UniqueHandle file(CreateFileW(tab.path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                        FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    LARGE_INTEGER size = {};
    if (!file || !GetFileSizeEx(file.Get(), &size)) return false;
    if (size.QuadPart < kLarge || size.QuadPart > kLargestStreamed) return false;
    return StreamFile(tab, file.Get(), static_cast<std::size_t>(size.QuadPart)) == Streamed::Done;
}

}  // namespace

bool TabLoadFile(DocumentTab& tab) {
    if (TryStream(tab)) return true;
    std::size_t length = 0;
    const HeapBlock<char> text(ReadSourceFileForEditor(tab.path, &length, &tab.encoding, &tab.lineEnding));
    if (!text) return false;
    EditorPaneSetBytes(tab.editor, {text.get(), length});
    return HoldsAll(tab.editor, length);
}
