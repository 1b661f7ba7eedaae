// Reads a file into a document's editor: a large UTF-8 file piece by piece (documents/text_pieces), any other file at
// once by ReadSourceFileForEditor. UI thread.
#include "documents/document_load.h"

#include "base/handles.h"
#include "documents/editor_pane.h"
#include "documents/text_pieces.h"
#include "files/file_io.h"
#include "scintilla/sci.h"

#include <cstddef>
#include <cstdint>

namespace {

constexpr LONGLONG kLarge = 4 << 20;              // bytes; a smaller file is read at once, which is no slower
constexpr LONGLONG kLargestStreamed = INT32_MAX;  // bytes, because positions are kept in 32 bits

// Scintilla cuts a text for which it has no memory. Saving the cut text would cut the file.
bool HoldsAll(HWND editor, std::size_t length) {
    return static_cast<std::size_t>(SciSend(editor, SCI_GETLENGTH)) == length;
}

bool LoadPieces(DocumentTab& tab, HANDLE file, std::size_t size) {
    const auto read = [file](char* out, std::size_t capacity) -> std::optional<std::size_t> {
        DWORD taken = 0;
        if (ReadFile(file, out, static_cast<DWORD>(capacity), &taken, nullptr) == FALSE) return std::nullopt;
        return taken;
    };
    EditorPaneBeginLoad(tab.editor, size);
    const PiecesResult result = MoveTextPieces(
        {.read = read, .append = [&tab](std::string_view piece) { EditorPaneAppendLoad(tab.editor, piece); }});
    EditorPaneEndLoad(tab.editor);
    if (result.end != PiecesEnd::Done || !HoldsAll(tab.editor, result.length)) return false;
    tab.encoding = TextEncoding::Utf8;
    tab.lineEnding = result.lineEnding;
    tab.form.keepBreaks = result.holdsNul;
    return true;
}

// True when the whole file was loaded in pieces. After false the editor may hold a part of it, and the file can still
// be read at once.
bool TryPieces(DocumentTab& tab) {
    const UniqueHandle file(CreateFileW(tab.path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                        FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    LARGE_INTEGER size = {};
    if (!file || GetFileSizeEx(file.Get(), &size) == FALSE) return false;
    if (size.QuadPart < kLarge || size.QuadPart > kLargestStreamed) return false;
    return LoadPieces(tab, file.Get(), static_cast<std::size_t>(size.QuadPart));
}

}  // namespace

bool TabLoadFile(DocumentTab& tab) {
    if (TryPieces(tab)) return true;
    std::size_t length = 0;
    const HeapBlock<char> text(ReadSourceFileForEditor(tab.path, &length, &tab.encoding, &tab.lineEnding, &tab.form));
    if (!text) return false;
    EditorPaneSetBytes(tab.editor, {text.get(), length});
    return HoldsAll(tab.editor, length);
}
