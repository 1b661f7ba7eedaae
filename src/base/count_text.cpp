#include "base/count_text.h"

#include "base/texts.h"

std::wstring CountText(std::size_t count, const wchar_t* one, const wchar_t* several) {
    return TextWith(count == 1 ? one : several, {std::to_wstring(count)});
}
