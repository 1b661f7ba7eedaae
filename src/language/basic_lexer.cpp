// The lexer of BASIC for Scintilla. Pure.
#include "language/basic_lexer.h"

#include "language/asm_words.h"

#include <ILexer.h>
#include <SciLexer.h>
#include <Scintilla.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

constexpr Sci_Position kPiece = 64 << 10;  // bytes taken from Scintilla at a time; a longer line is taken whole
constexpr int kDeepestFold = SC_FOLDLEVELNUMBERMASK - SC_FOLDLEVELBASE;

int StyleOfWord(std::string_view line, const Token& token, const Dialect& dialect) {
    if (token.Is(kTokenName)) return SCE_B_IDENTIFIER;
    const WordClass kind = LookUpWord(TokenName(line, token), dialect).kind;
    const bool text = token.suffix != 0 && TokenText(line, token).back() == '$';
    switch (kind) {
        case WordClass::Function: return SCE_B_KEYWORD3;
        case WordClass::Type: return token.suffix == 0 || text ? SCE_B_KEYWORD2 : SCE_B_IDENTIFIER;
        case WordClass::Entry: return SCE_B_KEYWORD4;
        case WordClass::Statement:
        case WordClass::Operator: return token.suffix == 0 ? SCE_B_KEYWORD : SCE_B_IDENTIFIER;
        default: return SCE_B_IDENTIFIER;
    }
}

int StyleOfAssemblyWord(std::string_view word) {
    switch (AsmClassOf(word)) {
        case AsmClass::None: return SCE_B_IDENTIFIER;
        case AsmClass::Register: return SCE_B_KEYWORD2;
        default: return SCE_B_ASM;
    }
}

int StyleOfToken(std::string_view line, const Token& token, const Dialect& dialect) {
    switch (token.kind) {
        case TokenKind::Word:
            return token.Is(kTokenAssembly) ? StyleOfAssemblyWord(TokenText(line, token))
                                            : StyleOfWord(line, token, dialect);
        case TokenKind::Label: return SCE_B_LABEL;
        case TokenKind::LineNumber:
        case TokenKind::Number: return SCE_B_NUMBER;
        case TokenKind::String: return token.Is(kTokenOpen) ? SCE_B_STRINGEOL : SCE_B_STRING;
        case TokenKind::Comment: return SCE_B_COMMENT;
        case TokenKind::Equate: return SCE_B_CONSTANT;
        case TokenKind::Directive: return SCE_B_PREPROCESSOR;
        case TokenKind::Data: return SCE_B_STRING;
        case TokenKind::Operator:
        case TokenKind::Separator:
        case TokenKind::Continuation: return SCE_B_OPERATOR;
        case TokenKind::Punctuation:
            return token.Is(kTokenAssembly) && line[token.start] == '!' ? SCE_B_ASM : SCE_B_OPERATOR;
    }
    return SCE_B_DEFAULT;
}

class BasicLexer final : public Scintilla::ILexer5 {
public:
    int SCI_METHOD Version() const override { return Scintilla::lvRelease5; }
    void SCI_METHOD Release() override { delete this; }
    const char* SCI_METHOD PropertyNames() override { return "dialect\nfold"; }
    int SCI_METHOD PropertyType(const char*) override { return SC_TYPE_INTEGER; }
    const char* SCI_METHOD DescribeProperty(const char*) override { return ""; }
    // Returns the place from which on the text must be styled again, or -1.
    Sci_Position SCI_METHOD PropertySet(const char* key, const char* value) override;
    const char* SCI_METHOD DescribeWordListSets() override { return ""; }
    Sci_Position SCI_METHOD WordListSet(int, const char*) override { return -1; }
    void SCI_METHOD Lex(Sci_PositionU start, Sci_Position length, int, Scintilla::IDocument* document) override;
    void SCI_METHOD Fold(Sci_PositionU, Sci_Position, int, Scintilla::IDocument*) override {}
    void* SCI_METHOD PrivateCall(int operation, void*) override {
        if (operation == kStateIsAsBefore) return stateIsAsBefore_ ? this : nullptr;
        return operation == kGetBlockTable ? &table_ : nullptr;
    }
    int SCI_METHOD LineEndTypesSupported() override { return SC_LINE_END_TYPE_DEFAULT; }
    int SCI_METHOD AllocateSubStyles(int, int) override { return -1; }
    int SCI_METHOD SubStylesStart(int) override { return -1; }
    int SCI_METHOD SubStylesLength(int) override { return 0; }
    int SCI_METHOD StyleFromSubStyle(int style) override { return style; }
    int SCI_METHOD PrimaryStyleFromStyle(int style) override { return style; }
    void SCI_METHOD FreeSubStyles() override {}
    void SCI_METHOD SetIdentifiers(int, const char*) override {}
    int SCI_METHOD DistanceToSecondaryStyles() override { return 0; }
    const char* SCI_METHOD GetSubStyleBases() override { return ""; }
    int SCI_METHOD NamedStyles() override { return 0; }
    const char* SCI_METHOD NameOfStyle(int) override { return ""; }
    const char* SCI_METHOD TagsOfStyle(int) override { return ""; }
    const char* SCI_METHOD DescriptionOfStyle(int) override { return ""; }
    const char* SCI_METHOD GetName() override { return kBasicLexerName; }
    int SCI_METHOD GetIdentifier() override { return kBasicLexer; }
    const char* SCI_METHOD PropertyGet(const char* key) override;

private:
    void StylePiece(Scintilla::IDocument& document, Sci_Position line);
    void StyleLine(const LineReader& reader);

    const Dialect* dialect_ = &DialectOf(0);
    std::string dialectProperty_;
    bool folds_ = false;
    BlockTable table_;
    // Kept from one call to the next, so that nothing is allocated for a key.
    LineReader reader_;
    BlockLine blocks_;
    std::string text_;
    std::string styles_;
    LineState state_ = 0;
    bool stateIsAsBefore_ = false;
};

Sci_Position BasicLexer::PropertySet(const char* key, const char* value) {
    if (std::strcmp(key, "dialect") == 0) {
        if (dialectProperty_ == value) return -1;
        dialectProperty_ = value;
        dialect_ = &DialectOf(static_cast<std::uint32_t>(std::atoi(value)));
        return 0;
    }
    if (std::strcmp(key, "fold") != 0 || folds_ == (std::atoi(value) != 0)) return -1;
    folds_ = !folds_;
    return 0;
}

const char* BasicLexer::PropertyGet(const char* key) {
    if (std::strcmp(key, "dialect") == 0) return dialectProperty_.c_str();
    return std::strcmp(key, "fold") == 0 && folds_ ? "1" : "0";
}

void BasicLexer::StyleLine(const LineReader& reader) {
    for (const Token& token : reader.tokens) {
        const auto style = static_cast<char>(StyleOfToken(reader.line, token, *dialect_));
        std::fill_n(styles_.begin() + static_cast<std::ptrdiff_t>(reader.start + token.start), token.length, style);
    }
}

// Styles the lines that `text_` holds, which begin with `line`.
void BasicLexer::StylePiece(Scintilla::IDocument& document, Sci_Position line) {
    styles_.assign(text_.size(), SCE_B_DEFAULT);
    reader_.text = text_;
    reader_.dialect = dialect_;
    reader_.next = 0;
    for (; ReadLine(reader_); ++line) {
        const LineState before = state_;
        state_ = ScanBlocks(table_, reader_.line, reader_.tokens, before, reader_.state, *dialect_, blocks_);
        StyleLine(reader_);  // after ScanBlocks, which knows names
        const auto state = static_cast<int>(state_);
        stateIsAsBefore_ = document.SetLineState(line, state) == state;
        if (!folds_) continue;
        const FoldLevel fold = FoldLevelOf(table_, before, state_, blocks_);
        document.SetLevel(
            line, (SC_FOLDLEVELBASE + std::min(fold.level, kDeepestFold)) | (fold.header ? SC_FOLDLEVELHEADERFLAG : 0));
    }
    document.SetStyles(static_cast<Sci_Position>(styles_.size()), styles_.data());
}

// Styles whole lines, also those of which only a part is asked for.
void BasicLexer::Lex(Sci_PositionU start, Sci_Position length, int, Scintilla::IDocument* document) {
    const Sci_Position size = document->Length();
    Sci_Position line = document->LineFromPosition(static_cast<Sci_Position>(start));
    Sci_Position at = document->LineStart(line);
    const Sci_Position wanted = std::min(static_cast<Sci_Position>(start) + length, size);
    state_ = line > 0 ? static_cast<LineState>(document->GetLineState(line - 1)) : 0;
    reader_.state = state_ & kScanStateMask;
    document->StartStyling(at);
    while (at < wanted) {
        const Sci_Position last = document->LineFromPosition(std::min(at + kPiece, wanted) - 1);
        const Sci_Position end = std::min(document->LineStart(last + 1), size);
        text_.resize(static_cast<std::size_t>(end - at));
        document->GetCharRange(text_.data(), at, end - at);
        StylePiece(*document, line);
        at = end;
        line = last + 1;
    }
}

}  // namespace

Scintilla::ILexer5* CreateBasicLexer() { return new BasicLexer; }
