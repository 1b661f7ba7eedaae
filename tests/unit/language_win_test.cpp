// The lexer of BASIC in a real editor.
#include "language/basic_lexer.h"
#include "scintilla/sci.h"
#include "support/dialect_sources.h"
#include "support/golden_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

class LexedText {
public:
    LexedText(std::uint32_t compiler, const std::string& text) {
        window_ = CreateWindowExW(0, L"Scintilla", L"", WS_POPUP, 0, 0, 400, 300, nullptr, nullptr, nullptr, nullptr);
        SciSend(window_, SCI_SETILEXER, 0, reinterpret_cast<LPARAM>(CreateBasicLexer()));
        Set("dialect", std::to_string(compiler).c_str());
        Set("fold", "1");
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

    // The level of each line, with "+" where a fold begins.
    std::vector<std::string> Folds() const {
        std::vector<std::string> folds;
        const LRESULT lines = SciSend(window_, SCI_GETLINECOUNT);
        for (LRESULT line = 0; line < lines; ++line) {
            const LRESULT level = SciSend(window_, SCI_GETFOLDLEVEL, static_cast<WPARAM>(line));
            folds.push_back(std::to_string((level & SC_FOLDLEVELNUMBERMASK) - SC_FOLDLEVELBASE) +
                            ((level & SC_FOLDLEVELHEADERFLAG) != 0 ? "+" : " "));
        }
        return folds;
    }

private:
    void Set(const char* key, const char* value) const {
        SciSend(window_, SCI_SETPROPERTY, reinterpret_cast<WPARAM>(key), reinterpret_cast<LPARAM>(value));
    }
    HWND window_ = nullptr;
    std::size_t length_ = 0;
};

// Each line behind its fold level, with the styles of its characters below it.
std::string Interleaved(const std::string& text, const std::string& styles, const std::vector<std::string>& folds) {
    std::string out;
    std::size_t line = 0;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        const std::string& fold = folds.at(line++);
        out += fold + " " + text.substr(start, end - start) + "\n";
        out += std::string(fold.size() + 1, ' ') + styles.substr(start, end - start) + "\n";
        start = end + 1;
    }
    return out;
}

// Colours and folds, also line by line, as typing makes them: they must depend only on the lines above.
std::string Styled(const std::string& text, std::uint32_t compiler) {
    const LexedText whole(compiler, text);
    whole.Colour(0, text.size());
    const LexedText pieces(compiler, text);
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find('\n', start), text.size() - 1) + 1;
        pieces.Colour(start, end);
        start = end;
    }
    EXPECT_EQ(pieces.Styles(), whole.Styles()) << compiler << " line by line";
    EXPECT_EQ(pieces.Folds(), whole.Folds()) << compiler << " line by line";
    return Interleaved(text, whole.Styles(), whole.Folds());
}

}  // namespace

TEST(Styling, OfAProgramInEachDialect) {
    const HMODULE scintilla = LoadLibraryW(L"" KVX_DIST_DIR "/Scintilla.dll");
    ASSERT_NE(scintilla, nullptr) << "not in " KVX_DIST_DIR;
    std::string text = GoldenText("styled.bas");
    std::erase(text, '\r');
    ExpectGolden("styled.txt", "=== KVXA64\n" + Styled(text, kCompilerKvxa64) + "=== KeldorBasic\n" +
                                   Styled(text, kCompilerKeldorBasic));
    for (const DialectSource& source : kDialectSources) {
        text = GoldenText(source.name);
        std::erase(text, '\r');
        ExpectGolden(std::string(source.name) + ".styled", Styled(text, source.compiler));
    }
    FreeLibrary(scintilla);
}
