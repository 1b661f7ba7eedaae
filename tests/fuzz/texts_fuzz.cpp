// Any bytes as a language file: nothing breaks, faults have lines, and every translation that is taken fits its English.
#include "base/texts.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

static void RequireOfTexts(bool condition) {
    if (!condition) std::abort();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes{reinterpret_cast<const char*>(data), size};
    std::vector<CatalogueFault> faults;
    const TextCatalogue catalogue = TextCatalogue::Parse(bytes, &faults);
    RequireOfTexts(faults.size() <= TextCatalogue::kMostFaults);
    for (const CatalogueFault& fault : faults) RequireOfTexts(fault.line >= 1 || size > kMostCatalogueBytes);
    TextsUse(&catalogue);
    for (const wchar_t* english : {L"&Open...\tCtrl+O", L"Line %d of %s", L"{1} of {2}", L"Saved\r\n"}) {
        const std::wstring_view shown = Text(english);
        RequireOfTexts(shown == english || TranslationFits(english, shown));
        TextWith(english, {L"{2}", L"b"});
    }
    RequireOfTexts(FilterText(L"A\0*.a\0B\0*.b\0").ends_with(std::wstring_view{L"\0*.b\0\0", 6}));
    TextsUse(nullptr);
    return 0;
}
