// The scan for declarations: joins the lines of a statement, and reads those statements that declare something. Pure.
#include "language/symbols.h"

#include "language/symbol_statements.h"

#include <algorithm>

namespace {

constexpr std::size_t kMostParts = 1 << 16;  // of a statement; the rest of a longer one is not read

// Between two lines that belong to different statements.
struct Cut {
    std::uint32_t lines = 0;
    std::size_t bytes = 0;
    SymbolState state = 0;
};

bool MayDeclare(const LineReader& reader, const Token& token, bool inList) {
    if (!token.Is(kTokenStarts)) return false;
    switch (token.kind) {
        case TokenKind::Label:
        case TokenKind::Equate:
        case TokenKind::Directive: return true;
        case TokenKind::Word:
            return !token.Is(kTokenAssembly) &&
                   (inList || WordDeclares(LookUpWord(TokenName(reader.line, token), *reader.dialect).word));
        default: return false;
    }
}

// Most lines declare nothing. In a TYPE, an ENUM or a CLASS every line may.
bool MayDeclare(const LineReader& reader, bool inList) {
    if ((reader.before & kScanContinues) != 0 || (reader.state & kScanContinues) != 0) return true;
    return std::ranges::any_of(reader.tokens, [&](const Token& token) { return MayDeclare(reader, token, inList); });
}

void TakeTokens(const LineReader& reader, std::uint32_t line, std::vector<StatementPart>& parts) {
    for (const Token& token : reader.tokens) {
        if (token.kind == TokenKind::Comment || token.kind == TokenKind::Continuation) continue;
        if (parts.size() == kMostParts) return;
        parts.push_back({token, TokenText(reader.line, token), line});
    }
}

// The statements that the parts hold.
void ReadStatements(DeclarationReader& reader, std::vector<StatementPart>& parts) {
    const std::span<const StatementPart> all(parts);
    for (std::size_t from = 0; from < all.size();) {
        std::size_t to = from;
        while (to < all.size() && all[to].token.kind != TokenKind::Separator &&
               (to == from || !all[to].token.Is(kTokenStarts)))
            ++to;
        if (to > from) ReadDeclaration(reader, all.subspan(from, to - from));
        from = to < all.size() && all[to].token.kind == TokenKind::Separator ? to + 1 : to;
    }
    parts.clear();
}

}  // namespace

SymbolPiece ScanSymbols(std::string_view text, SymbolState before, const Dialect& dialect, std::size_t wanted,
                        bool textEnds) {
    constexpr SymbolState kScanMask = (1u << kScanStateBits) - 1;
    SymbolPiece piece{.before = before};
    DeclarationReader declarations{.piece = piece, .dialect = dialect, .blocks = before >> kScanStateBits};
    LineReader reader{.text = text, .dialect = &dialect, .state = static_cast<ScanState>(before & kScanMask)};
    std::vector<StatementPart> parts;
    Cut cut{.state = before};
    std::uint32_t line = 0;
    for (; reader.next < text.size(); ++line) {
        if ((reader.state & kScanContinues) == 0) {
            ReadStatements(declarations, parts);
            cut = {line, reader.next, (declarations.blocks << kScanStateBits) | reader.state};
            if (cut.bytes >= wanted) break;
        }
        ReadLine(reader);
        if (MayDeclare(reader, BlockListsNames(declarations.blocks))) TakeTokens(reader, line, parts);
    }
    if (reader.next == text.size() && (textEnds || (reader.state & kScanContinues) == 0)) {
        ReadStatements(declarations, parts);
        cut = {line, text.size(), (declarations.blocks << kScanStateBits) | reader.state};
    }
    piece.lines = cut.lines;
    piece.bytes = static_cast<std::uint32_t>(cut.bytes);
    piece.after = cut.state;
    return piece;
}

SymbolTable SymbolsOfText(std::string_view text, const Dialect& dialect) {
    std::vector<std::shared_ptr<const SymbolPiece>> pieces;
    SymbolState state = 0;
    constexpr std::size_t kPieceBytes = 1 << 20;
    while (!text.empty()) {
        pieces.push_back(std::make_shared<SymbolPiece>(ScanSymbols(text, state, dialect, kPieceBytes, true)));
        state = pieces.back()->after;
        text.remove_prefix(pieces.back()->bytes);
    }
    return JoinSymbols(pieces);
}
