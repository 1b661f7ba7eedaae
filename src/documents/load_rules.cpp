// What can be opened. Pure.
#include "documents/load_rules.h"

#include "base/texts.h"

LoadWay LoadWayOf(std::int64_t size, bool remote) {
    if (size > static_cast<std::int64_t>(kLargestText)) return LoadWay::Refused;
    return remote || size >= kLargeFile ? LoadWay::Worker : LoadWay::Direct;
}

LoadEnd LoadEndOf(PiecesEnd end) {
    switch (end) {
        case PiecesEnd::Done: return LoadEnd::Done;
        case PiecesEnd::Refused: return LoadEnd::NoMemory;
        case PiecesEnd::TextTooLong: return LoadEnd::TooLarge;
        case PiecesEnd::LineTooLong: return LoadEnd::LineTooLong;
        case PiecesEnd::OtherCode:
        case PiecesEnd::Failed: break;
    }
    return LoadEnd::Unreadable;
}

std::wstring LoadFailureText(LoadEnd end) {
    switch (end) {
        case LoadEnd::TooLarge: return Text(L"\n\nThe file is too large: the editor holds texts of less than 2 GB.");
        case LoadEnd::LineTooLong:
            return TextWith(L"\n\nThe file has a line of more than {1} MB, which the editor cannot show.",
                            {std::to_wstring(kLargestLine >> 20)});
        case LoadEnd::NoMemory: return Text(L"\n\nThere is not enough memory for it.");
        case LoadEnd::Cancelled: return Text(L"\n\nOpening it was cancelled.");
        case LoadEnd::Done:
        case LoadEnd::Unreadable: break;
    }
    return {};
}

std::wstring PlainNotice(const wchar_t* label, std::size_t line) {
    std::wstring text = TextWith(
        L"{1} has a very long line or is very large. It is shown plain: without colours, folding and word wrap.",
        {label});
    if (line > kLargestLine)
        text += TextWith(L" A file with a line of more than {1} MB cannot be opened again after it was saved.",
                         {std::to_wstring(kLargestLine >> 20)});
    return text;
}
