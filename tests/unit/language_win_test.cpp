// The real lexers with the program's keywords.
#include "language/lexer_table.h"
#include "scintilla/sci.h"
#include "scintilla/scintilla_library.h"
#include "settings/compilers.h"
#include "support/golden_file.h"

#include <gtest/gtest.h>

#include <string>

namespace {

class LexedText {
public:
    LexedText(Language language, std::uint32_t compiler, const std::string& text) {
        window_ = CreateWindowExW(0, L"Scintilla", L"", WS_POPUP, 0, 0, 400, 300, nullptr, nullptr, nullptr, nullptr);
        SciSend(window_, SCI_SETILEXER, 0, reinterpret_cast<LPARAM>(ScintillaCreateLexer(LexerOf(language).name)));
        for (int set = 0; set < kKeywordSets; ++set)
            SciSend(window_, SCI_SETKEYWORDS, static_cast<WPARAM>(set),
                    reinterpret_cast<LPARAM>(LexerKeywords(language, compiler, set).c_str()));
        SciSend(window_, SCI_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
        length_ = text.size();
    }
    ~LexedText() { DestroyWindow(window_); }
    LexedText(const LexedText&) = delete;
    LexedText& operator=(const LexedText&) = delete;

    // A letter for the style of each character: 'A' for 0.
    std::string Styles() const {
        std::string styles;
        for (std::size_t i = 0; i < length_; ++i)
            styles += static_cast<char>('A' + SciSend(window_, SCI_GETSTYLEAT, static_cast<WPARAM>(i)));
        return styles;
    }
    void Colour(std::size_t from, std::size_t to) const {
        SciSend(window_, SCI_COLOURISE, static_cast<WPARAM>(from), static_cast<LPARAM>(to));
    }

private:
    HWND window_ = nullptr;
    std::size_t length_ = 0;
};

// Each line with the styles of its characters below it.
std::string Interleaved(const std::string& text, const std::string& styles) {
    std::string out;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        out += text.substr(start, end - start) + "\n" + styles.substr(start, end - start) + "\n";
        start = end + 1;
    }
    return out;
}

}  // namespace

TEST(Styling, OfASampleInTwoDialects) {
    const HMODULE scintilla = LoadLibraryW(L"" KVX_DIST_DIR "/Scintilla.dll");
    const HMODULE lexilla = LoadLibraryW(L"" KVX_DIST_DIR "/Lexilla.dll");
    ASSERT_TRUE(scintilla != nullptr && lexilla != nullptr) << "not in " KVX_DIST_DIR;
    g_scintilla.createLexer =
        reinterpret_cast<CreateLexerFunction>(reinterpret_cast<void*>(GetProcAddress(lexilla, "CreateLexer")));
    std::string text = GoldenText("styled.bas");
    std::erase(text, '\r');
    std::string found;
    for (const std::uint32_t compiler : {kCompilerKvxa64, kCompilerKeldorBasic}) {
        const LexedText whole(Language::Basic, compiler, text);
        whole.Colour(0, text.size());
        const std::wstring wide = g_compilers[compiler].name;
        const std::string name(wide.begin(), wide.end());
        found += "=== " + name + "\n" + Interleaved(text, whole.Styles());
        // Colours line by line, as typing does: a line's colours must depend only on the lines above it.
        const LexedText pieces(Language::Basic, compiler, text);
        for (std::size_t start = 0; start < text.size();) {
            const std::size_t end = std::min(text.find('\n', start), text.size() - 1) + 1;
            pieces.Colour(start, end);
            start = end;
        }
        EXPECT_EQ(pieces.Styles(), whole.Styles()) << name << " line by line";
    }
    ExpectGolden("styled.txt", found);
    g_scintilla.createLexer = nullptr;
    FreeLibrary(lexilla);
    FreeLibrary(scintilla);
}
