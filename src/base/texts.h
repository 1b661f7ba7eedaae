// The texts that the user reads, in the language of this run. The program is written in English; a catalogue gives the
// translation of each text. It is chosen once, before the first window and any thread, and never changes, so that every
// file and every thread may ask for a text. Texts for files, logs, servers and other programs stay as they are written.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// The translation, or `english` itself when there is none; null gives null. What is returned lives as long as the program.
const wchar_t* Text(const wchar_t* english);

// A text in a table or a constant, which is made before the catalogue is chosen: who shows it gives it to Text. So that
// scripts/texts finds it.
constexpr const wchar_t* English(const wchar_t* english) { return english; }

// The translation of a whole sentence with {1}, {2}, ... in the places of `values`. A translation may name them in any
// order. A value is put in as it is.
std::wstring TextWith(const wchar_t* english, std::initializer_list<std::wstring_view> values);

// The names in the list of a file dialog are translated, its patterns stay. `filter` ends with two NULs, and so does the
// result.
std::wstring FilterText(const wchar_t* filter);

inline constexpr std::size_t kMostCatalogueBytes = 4U << 20;
inline constexpr std::size_t kLongestText = 8192;  // characters of a text and of its translation

// True when the translation has the same formats (%s) in the same order, the same places ({1}), one underlined letter if
// there is one, the same keys after a tab and the same line break at its end. Others would break what shows it.
bool TranslationFits(std::wstring_view english, std::wstring_view translation);

struct CatalogueFault {
    int line;  // from 1
    const wchar_t* what;
};

// What a language file holds: see docs/translating.md.
class TextCatalogue {
public:
    // Takes any bytes. What cannot be used is left out and reported, at most kMostFaults times.
    static constexpr std::size_t kMostFaults = 100;
    static TextCatalogue Parse(std::string_view utf8, std::vector<CatalogueFault>* faults);

    const std::wstring* Find(std::wstring_view english) const;  // null: no translation
    std::size_t Size() const { return texts_.size(); }

private:
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::wstring_view text) const { return std::hash<std::wstring_view>()(text); }
    };
    std::unordered_map<std::wstring, std::wstring, Hash, std::equal_to<>> texts_;
};

// The catalogue of this run; null: English. It must outlive every call of Text.
void TextsUse(const TextCatalogue* catalogue);
// False in English: then nothing that was made from a resource needs to be gone through.
bool TextsAreTranslated();
