// The parts of a statement, the open blocks, and the making of a symbol. Pure.
#include "language/symbol_parts.h"

#include <algorithm>

namespace {

constexpr std::size_t kLongestName = 255;     // bytes that are kept; the same for a type
constexpr std::size_t kLongestDetail = 2000;  // bytes of parameters or of a value that are kept

constexpr unsigned kBlockBits = 4;
constexpr std::uint32_t kUnnamedBlocks = Bit(Block::Unnamed) | Bit(Block::UnnamedEnum);
// The heading of a procedure ends all others, so that a block whose end is not typed yet does not swallow what follows.
constexpr std::uint32_t kHoldProcedures =
    Bit(Block::Class) | Bit(Block::Interface) | Bit(Block::ClassInterface) | Bit(Block::Namespace);

void CloseOne(DeclarationReader& reader, int* named) {
    if (!IsIn(reader.blocks, kUnnamedBlocks)) ++*named;
    reader.blocks >>= kBlockBits;
}

void AddEnd(DeclarationReader& reader, std::uint32_t line, int named, bool lineAbove) {
    if (named == 0) return;
    reader.piece.symbols.push_back(
        {.line = line, .column = lineAbove ? 1u : 0u, .next = static_cast<std::uint32_t>(named), .kind = kBodyEnds});
}

// Up to `limit` bytes in the arena; a character stays whole.
void AppendCut(std::string& arena, std::size_t limit, std::string_view text) {
    if (arena.size() >= limit) return;
    std::size_t length = std::min(text.size(), limit - arena.size());
    while (length > 0 && length < text.size() && (static_cast<std::uint8_t>(text[length]) & 0xC0) == 0x80) --length;
    arena.append(text.substr(0, length));
}

// Whether a blank or a line break stands before a part. Behind "(" neither is wanted.
bool StandsApart(Parts parts, std::size_t at) {
    if (at == 0 || OpensParentheses(parts[at - 1])) return false;
    return parts[at].line != parts[at - 1].line || parts[at].token.start != parts[at - 1].token.End();
}

// The parts with one blank between those that stand apart.
void AppendParts(std::string& arena, std::size_t limit, Parts parts) {
    for (std::size_t i = 0; i < parts.size() && arena.size() < limit; ++i) {
        if (StandsApart(parts, i)) arena += ' ';
        AppendCut(arena, limit, parts[i].text);
    }
}

std::uint16_t LengthSince(const std::string& arena, std::size_t start) {
    return static_cast<std::uint16_t>(arena.size() - start);
}

}  // namespace

void OpenBlock(DeclarationReader& reader, Block block) {
    // Of more blocks than there is room for the outermost is forgotten.
    constexpr std::uint64_t kRoom = ~std::uint64_t{0} >> kScanStateBits;
    reader.blocks = ((reader.blocks << kBlockBits) | static_cast<std::uint64_t>(block)) & kRoom;
}

void CloseBlocksUpTo(DeclarationReader& reader, std::uint32_t kinds, std::uint32_t line) {
    std::uint64_t blocks = reader.blocks;
    while (blocks != 0 && !IsIn(blocks, kinds)) blocks >>= kBlockBits;
    if (blocks == 0) return;
    blocks >>= kBlockBits;
    int named = 0;
    while (reader.blocks != blocks) CloseOne(reader, &named);
    AddEnd(reader, line, named, false);
}

void CloseBlocksBeforeProcedure(DeclarationReader& reader, std::uint32_t line) {
    int named = 0;
    while (reader.blocks != 0 && !IsIn(reader.blocks, kHoldProcedures)) CloseOne(reader, &named);
    AddEnd(reader, line, named, true);
}

BasicWord WordOf(const DeclarationReader& reader, const StatementPart& part) {
    if (part.token.kind != TokenKind::Word || part.token.Is(kTokenName) || part.token.suffix != 0)
        return BasicWord::None;
    return LookUpWord(part.text, reader.dialect).word;
}

BasicWord WordAt(const DeclarationReader& reader, Parts parts, std::size_t at) {
    return at < parts.size() ? WordOf(reader, parts[at]) : BasicWord::None;
}

bool IsName(Parts parts, std::size_t at) { return at < parts.size() && parts[at].token.kind == TokenKind::Word; }

bool IsMark(Parts parts, std::size_t at, std::string_view mark) {
    return at < parts.size() && parts[at].text == mark && parts[at].token.kind != TokenKind::String;
}

bool OpensParentheses(const StatementPart& part) { return part.text == "(" || part.text == "[" || part.text == "{"; }
bool ClosesParentheses(const StatementPart& part) { return part.text == ")" || part.text == "]" || part.text == "}"; }

Symbol& AddSymbol(DeclarationReader& reader, const StatementPart& name, const Declared& declared, std::size_t cut) {
    std::string& arena = reader.piece.arena;
    std::size_t start = arena.size();
    Symbol symbol{.line = name.line,
                  .column = name.token.start + static_cast<std::uint32_t>(cut),
                  .texts = static_cast<std::uint32_t>(start),
                  .kind = declared.kind,
                  .flags = declared.flags};
    AppendCut(arena, start + kLongestName, name.text.substr(cut, name.text.size() - 2 * cut - name.token.suffix));
    symbol.nameLength = LengthSince(arena, start);

    start = arena.size();
    if (!declared.type.empty())
        AppendParts(arena, start + kLongestName, declared.type);
    else
        arena.append(name.text.substr(name.text.size() - name.token.suffix));
    symbol.typeLength = LengthSince(arena, start);

    start = arena.size();
    AppendParts(arena, start + kLongestDetail, declared.detail);
    if (!declared.definition.empty()) {
        arena.append(" = ");
        AppendParts(arena, start + kLongestDetail, declared.definition);
    }
    symbol.detailLength = LengthSince(arena, start);
    reader.piece.symbols.push_back(symbol);
    return reader.piece.symbols.back();
}

void AddWithBody(DeclarationReader& reader, const StatementPart& name, const Declared& declared, Block block) {
    AddSymbol(reader, name, declared).next = kHasBody;
    OpenBlock(reader, block);
}
