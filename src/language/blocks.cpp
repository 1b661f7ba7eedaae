// The blocks of BASIC. A statement is read token by token; what has been read of it is a step. Pure.
#include "language/blocks.h"

#include <algorithm>
#include <iterator>

namespace {

using enum BlockKind;

constexpr BlockRow kRows[] = {
    {If, BasicWord::If, BasicWord::None, BasicWord::EndIf, "END IF"},
    {Select, BasicWord::Select, BasicWord::None, BasicWord::EndSelect, "END SELECT"},
    {Case, BasicWord::Case, BasicWord::None, BasicWord::None, ""},
    {For, BasicWord::For, BasicWord::Next, BasicWord::None, "NEXT"},
    {Do, BasicWord::Do, BasicWord::Loop, BasicWord::None, "LOOP"},
    {While, BasicWord::While, BasicWord::Wend, BasicWord::EndWhile, "WEND"},
    {Try, BasicWord::Try, BasicWord::None, BasicWord::EndTry, "END TRY"},
    {With, BasicWord::With, BasicWord::None, BasicWord::EndWith, "END WITH"},
    {Type, BasicWord::Type, BasicWord::None, BasicWord::EndType, "END TYPE"},
    {Union, BasicWord::Union, BasicWord::None, BasicWord::EndUnion, "END UNION"},
    {Enum, BasicWord::Enum, BasicWord::None, BasicWord::EndEnum, "END ENUM"},
    {Macro, BasicWord::Macro, BasicWord::None, BasicWord::EndMacro, "END MACRO"},
    {Class, BasicWord::Class, BasicWord::None, BasicWord::EndClass, "END CLASS", BlockRow::Container},
    {Interface, BasicWord::Interface, BasicWord::None, BasicWord::EndInterface, "END INTERFACE", BlockRow::Container},
    {Namespace, BasicWord::Namespace, BasicWord::None, BasicWord::EndNamespace, "END NAMESPACE", BlockRow::Container},
    {Sub, BasicWord::Sub, BasicWord::None, BasicWord::EndSub, "END SUB", BlockRow::Procedure},
    {Function, BasicWord::Function, BasicWord::None, BasicWord::EndFunction, "END FUNCTION", BlockRow::Procedure},
    {Method, BasicWord::Method, BasicWord::None, BasicWord::EndMethod, "END METHOD", BlockRow::Procedure},
    {Property, BasicWord::Property, BasicWord::None, BasicWord::EndProperty, "END PROPERTY", BlockRow::Procedure},
    {FastProc, BasicWord::FastProc, BasicWord::None, BasicWord::EndFastProc, "END FASTPROC", BlockRow::Procedure},
    {Asm, BasicWord::Asm, BasicWord::None, BasicWord::EndAsm, "END ASM"},
    {Condition, BasicWord::None, BasicWord::None, BasicWord::None, "#ENDIF"},
};
static_assert(std::size(kRows) == static_cast<std::size_t>(Count), "each kind has a row");
static_assert(std::ranges::all_of(kRows,
                                  [](const BlockRow& row) { return &row == &kRows[static_cast<int>(row.kind)]; }),
              "the rows are in the order of the kinds");

// Words that may stand before SUB, FUNCTION and the like.
bool IsPrefix(BasicWord word) {
    switch (word) {
        case BasicWord::Static:
        case BasicWord::Private:
        case BasicWord::Public:
        case BasicWord::Callback:
        case BasicWord::Thread:
        case BasicWord::Export:
        case BasicWord::Inline:
        case BasicWord::Override:
        case BasicWord::ThreadSafe: return true;
        default: return false;
    }
}

// What has been read of a statement. `kNamed` and above: a word that opens the block of a kind when a name follows.
enum Step : std::uint32_t {
    kStart,       // nothing but prefixes
    kPassive,     // nothing more of it counts
    kRestOfLine,  // nor of the statements after it, which belong to a one-line IF
    kIf,          // IF
    kIfThen,      // IF, with THEN last
    kMacro,       // MACRO and its name: complete in one line when a "=" follows
    kEnd,         // END
    kNext,        // NEXT: each comma closes one more
    kNamed,
};
static_assert(kNamed + static_cast<std::uint32_t>(Count) <= 1u << kStepBits);
constexpr std::uint32_t kMostSets = 1u << 18;
static_assert(kMostSets < 1u << (32 - kSetShift));
constexpr std::uint16_t kDeepest = 1000;

std::uint32_t SetOf(LineState state) { return state >> kSetShift; }
Step StepOf(LineState state) { return static_cast<Step>(state >> kScanStateBits & ((1u << kStepBits) - 1)); }

std::uint64_t KeyOf(std::uint32_t upper, std::uint32_t lower) { return std::uint64_t{upper} << 32 | lower; }

std::uint32_t ConditionsOutside(const BlockTable& table, std::uint32_t outer) {
    return outer == 0 ? 0 : table.sets[outer - 1].conditions + 1;
}

std::uint32_t NumberOfSet(BlockTable& table, std::uint32_t nest, std::uint32_t outer) {
    if (nest == 0 && outer == 0) return 0;
    const auto next = static_cast<std::uint32_t>(table.sets.size());
    if (next == kMostSets) {
        const auto known = table.setNumbers.find(KeyOf(nest, outer));
        return known == table.setNumbers.end() ? 0 : known->second;
    }
    const auto [row, isNew] = table.setNumbers.try_emplace(KeyOf(nest, outer), next);
    if (isNew) table.sets.push_back({nest, outer, ConditionsOutside(table, outer)});
    return row->second;
}

// The block of that kind inside another one, but not `other`, which may have the same place.
std::uint32_t NestInside(BlockTable& table, std::uint32_t parent, BlockKind kind, std::uint32_t other) {
    if (table.nests[parent].depth == kDeepest) return parent;
    constexpr std::uint32_t kTwin = 1U << 8;
    const auto next = static_cast<std::uint32_t>(table.nests.size());
    std::uint64_t key = KeyOf(parent, static_cast<std::uint32_t>(kind));
    const auto known = table.nestNumbers.find(key);
    if (known != table.nestNumbers.end() && known->second == other) key |= kTwin;
    const auto [row, isNew] = table.nestNumbers.try_emplace(key, next);
    if (isNew) table.nests.push_back({parent, kind, static_cast<std::uint16_t>(table.nests[parent].depth + 1)});
    return row->second;
}

// A line on its way through ScanBlocks.
struct Walk {
    BlockTable& table;
    const Dialect& dialect;
    std::string_view line;
    std::span<const Token> tokens;
    BlockLine& out;
    std::uint32_t nest;
    std::uint32_t outer;
    Step step;
    std::uint32_t first = 0;      // token with which the statement began
    bool firstStatement = false;  // of its logical line: closes what the line is indented by

    int Depth() const { return table.nests[nest].depth; }
    int Total() const { return Depth() + static_cast<int>(ConditionsOutside(table, outer)); }
};

void NoteClosed(Walk& walk, int depth) {
    walk.out.lowest = std::min(walk.out.lowest, walk.Total());
    if (walk.firstStatement) walk.out.depth = depth;
}

void AddEvent(Walk& walk, BlockEvent::Kind kind, BlockKind block, std::uint32_t last, std::uint32_t id) {
    walk.out.events.push_back({kind, block, walk.first, last, id});
}

// The innermost open block of a kind; 0 without one.
std::uint32_t FindOpen(const Walk& walk, BlockKind kind) {
    std::uint32_t nest = walk.nest;
    while (nest != 0 && walk.table.nests[nest].kind != kind) nest = walk.table.nests[nest].parent;
    return nest;
}

// Closes the innermost block of a kind with all blocks inside it.
void CloseBlock(Walk& walk, BlockKind kind, std::uint32_t last) {
    const std::uint32_t open = FindOpen(walk, kind);
    if (open != 0) walk.nest = walk.table.nests[open].parent;
    AddEvent(walk, BlockEvent::Kind::Close, kind, last, open);
    NoteClosed(walk, walk.Depth());
}

// ELSE, CATCH: what is still open inside the block is closed.
void DivideBlock(Walk& walk, BlockKind kind, std::uint32_t last) {
    const std::uint32_t open = FindOpen(walk, kind);
    if (open != 0) walk.nest = open;
    AddEvent(walk, BlockEvent::Kind::Middle, kind, last, open);
    if (walk.firstStatement) walk.out.depth = std::max(walk.Depth() - 1, 0);
}

// What is open around a new procedure, but for containers, was left open by mistake and must not indent the rest. Returns
// the outermost such block; 0 without one.
std::uint32_t CloseProcedures(Walk& walk) {
    std::uint32_t outermost = 0;
    for (std::uint32_t nest = walk.nest; nest != 0; nest = walk.table.nests[nest].parent)
        if (BlockRowOf(walk.table.nests[nest].kind).role != BlockRow::Container) outermost = nest;
    if (outermost != 0) walk.nest = walk.table.nests[outermost].parent;
    NoteClosed(walk, walk.Depth());
    return outermost;
}

void OpenBlock(Walk& walk, BlockKind kind, std::uint32_t last) {
    const std::uint32_t left = BlockRowOf(kind).role == BlockRow::Procedure ? CloseProcedures(walk) : 0;
    walk.nest = NestInside(walk.table, walk.nest, kind, left);
    AddEvent(walk, BlockEvent::Kind::Open, kind, last, walk.nest);
}

void OnCase(Walk& walk, std::uint32_t last) {
    const std::uint32_t open = FindOpen(walk, Select);
    if (open == 0) return;
    walk.nest = open;
    AddEvent(walk, BlockEvent::Kind::Middle, Select, last, open);
    NoteClosed(walk, walk.Depth());
    OpenBlock(walk, Case, last);
}

const BlockRow* RowOpenedBy(BasicWord word) {
    if (word == BasicWord::None) return nullptr;
    if (word == BasicWord::ForEach) word = BasicWord::For;
    const BlockRow* row = std::ranges::find(kRows, word, &BlockRow::opener);
    return row == std::end(kRows) ? nullptr : row;
}

const BlockRow* RowClosedBy(BasicWord word) {
    if (word == BasicWord::None) return nullptr;
    const BlockRow* row = std::ranges::find_if(
        kRows, [word](const BlockRow& each) { return each.closer == word || each.joined == word; });
    return row == std::end(kRows) ? nullptr : row;
}

Step StepAfterOpener(Walk& walk, const BlockRow& row, std::uint32_t index) {
    switch (row.kind) {
        case If: return kIf;
        case Asm:
        case Condition: return kPassive;  // a lone ASM is told by the scanner
        case Case: OnCase(walk, index); return kPassive;
        case Select:
        case For:
        case Do:
        case While:
        case Try:
        case With:
        case Enum: OpenBlock(walk, row.kind, index); return kPassive;
        default: return static_cast<Step>(kNamed + static_cast<std::uint32_t>(row.kind));
    }
}

Step StepAtStart(Walk& walk, BasicWord word, std::uint32_t index) {
    if (IsPrefix(word)) return kStart;
    if (const BlockRow* row = RowOpenedBy(word)) return StepAfterOpener(walk, *row, index);
    switch (word) {
        case BasicWord::End: return kEnd;
        case BasicWord::Else:
        case BasicWord::ElseIf: DivideBlock(walk, If, index); return kPassive;
        case BasicWord::Catch:
        case BasicWord::Finally: DivideBlock(walk, Try, index); return kPassive;
        default: break;
    }
    if (const BlockRow* row = RowClosedBy(word)) {
        CloseBlock(walk, row->kind, index);
        return row->kind == For ? kNext : kPassive;
    }
    return kPassive;
}

// The token after SUB, TYPE and the like.
Step StepAfterNamed(Walk& walk, BlockKind kind, const Token& token, BasicWord word, std::uint32_t index) {
    if (kind == Class && word == BasicWord::Method)
        return static_cast<Step>(kNamed + static_cast<std::uint32_t>(Method));
    // "TYPE SET" is a statement, and "type AS LONG" a member.
    const bool named =
        token.kind == TokenKind::Word && word != BasicWord::As && !(kind == Type && word == BasicWord::Set);
    if (!named) return kPassive;
    if (kind == Macro) return kMacro;
    OpenBlock(walk, kind, index);
    return kPassive;
}

BasicWord WordOf(const Walk& walk, const Token& token) {
    if (token.kind != TokenKind::Word || token.Is(kTokenName) || token.suffix != 0) return BasicWord::None;
    return LookUpWord(TokenName(walk.line, token), walk.dialect).word;
}

Step NextStep(Walk& walk, const Token& token, std::uint32_t index) {
    const std::string_view text = TokenText(walk.line, token);
    switch (walk.step) {
        case kPassive:
        case kRestOfLine: return walk.step;
        case kStart: return StepAtStart(walk, WordOf(walk, token), index);
        case kIf:
        case kIfThen: return WordOf(walk, token) == BasicWord::Then ? kIfThen : kIf;
        case kMacro: return text == "=" ? kPassive : kMacro;
        case kNext:
            if (text == ",") CloseBlock(walk, For, index);
            return kNext;
        case kEnd: {
            const BlockRow* row = RowOpenedBy(WordOf(walk, token));
            if (row != nullptr && row->kind != Case) CloseBlock(walk, row->kind, index);
            return kPassive;
        }
        default: {
            const auto kind = static_cast<BlockKind>(walk.step - kNamed);
            return StepAfterNamed(walk, kind, token, WordOf(walk, token), index);
        }
    }
}

// A lone TYPE or UNION inside another one has no name.
bool OpensNameless(const Walk& walk) {
    const BlockKind around = walk.table.nests[walk.nest].kind;
    const bool isMember = around == Type || around == Union;
    return isMember && (walk.step == kNamed + static_cast<std::uint32_t>(Type) ||
                        walk.step == kNamed + static_cast<std::uint32_t>(Union));
}

// The end of a statement, at a colon or at the end of its line.
Step StepAfterStatement(Walk& walk, std::uint32_t last) {
    switch (walk.step) {
        case kRestOfLine:
        case kIf: return kRestOfLine;
        case kIfThen: OpenBlock(walk, If, last); return kStart;
        case kMacro: OpenBlock(walk, Macro, last); return kStart;
        default:
            if (OpensNameless(walk)) OpenBlock(walk, static_cast<BlockKind>(walk.step - kNamed), last);
            return kStart;
    }
}

bool IsOneOf(std::string_view word, std::initializer_list<std::string_view> upper) {
    return std::ranges::any_of(
        upper,
        [word](std::string_view each) {
            return std::ranges::equal(
                word, each, [](char a, char b) { return (a & ~0x20) == b; });
        });
}

// The set in which the innermost #IF began. All branches start from what was open there.
std::uint32_t NestOutside(const Walk& walk) { return walk.table.sets[walk.outer - 1].nest; }

// Ids of conditions are apart from those of other blocks.
std::uint32_t ConditionId(const Walk& walk) { return walk.outer == 0 ? 0 : walk.outer | 1u << 31; }

void OnDirective(Walk& walk, std::string_view text, std::uint32_t index) {
    const std::string_view word = text.substr(std::min(text.find_first_not_of("#$ \t"), text.size()));
    if (IsOneOf(word, {"IF", "IFDEF", "IFNDEF"})) {
        walk.outer = NumberOfSet(walk.table, walk.nest, walk.outer) + 1;
        AddEvent(walk, BlockEvent::Kind::Open, Condition, index, ConditionId(walk));
    } else if (IsOneOf(word, {"ELSE", "ELSEIF"})) {
        AddEvent(walk, BlockEvent::Kind::Middle, Condition, index, ConditionId(walk));
        if (walk.outer == 0) return;
        walk.nest = NestOutside(walk);
        walk.out.depth = walk.Depth();
    } else if (IsOneOf(word, {"ENDIF"})) {
        AddEvent(walk, BlockEvent::Kind::Close, Condition, index, ConditionId(walk));
        if (walk.outer == 0) return;
        walk.out.depth = walk.table.nests[NestOutside(walk)].depth;
        walk.outer = walk.table.sets[walk.outer - 1].outer;
        walk.out.lowest = std::min(walk.out.lowest, walk.Total());
    }
}

void WalkToken(Walk& walk, std::uint32_t index) {
    const Token& token = walk.tokens[index];
    switch (token.kind) {
        case TokenKind::Comment:
        case TokenKind::Continuation:
        case TokenKind::LineNumber:
        case TokenKind::Label: return;
        case TokenKind::Separator: {
            const bool empty = walk.step == kStart;
            walk.step = StepAfterStatement(walk, index);
            if (!empty) walk.firstStatement = false;
            return;
        }
        case TokenKind::Directive:
            walk.first = index;
            OnDirective(walk, TokenText(walk.line, token), index);
            walk.step = kRestOfLine;
            return;
        default: break;
    }
    if (token.Is(kTokenAssembly)) return;
    if (token.Is(kTokenStarts)) walk.first = index;
    walk.step = NextStep(walk, token, index);
}

// Words that are no names in a list, unless AS follows: they end it, or begin what comes behind a list that is not closed
// yet.
bool IsNoListedName(BasicWord word) {
    switch (word) {
        case BasicWord::End:
        case BasicWord::EndType:
        case BasicWord::EndUnion:
        case BasicWord::EndEnum:
        case BasicWord::Type:
        case BasicWord::Union:
        case BasicWord::Enum:
        case BasicWord::Declare:
        case BasicWord::Dim:
        case BasicWord::Global:
        case BasicWord::Local:
        case BasicWord::Macro: return true;
        default: break;
    }
    const BlockRow* row = RowOpenedBy(word);
    return row != nullptr && row->role != BlockRow::Inner;
}

void MarkListedNames(std::string_view line, std::span<Token> tokens, const Dialect& dialect) {
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        Token& token = tokens[i];
        if (token.kind != TokenKind::Word || !token.Is(kTokenStarts) || token.Is(kTokenAssembly)) continue;
        const bool last = i + 1 == tokens.size() || tokens[i + 1].kind == TokenKind::Separator ||
                          tokens[i + 1].kind == TokenKind::Comment;
        const std::string_view next = last ? std::string_view() : TokenText(line, tokens[i + 1]);
        const bool as = !last && LookUpWord(next, dialect).word == BasicWord::As;
        const bool named = last || next == "(" || next == "=";
        if (as || (named && !IsNoListedName(LookUpWord(TokenName(line, token), dialect).word)))
            token.flags |= kTokenName;
    }
}

}  // namespace

const BlockRow& BlockRowOf(BlockKind kind) { return kRows[static_cast<std::size_t>(kind)]; }

int DepthOf(const BlockTable& table, LineState state) { return table.nests[table.sets[SetOf(state)].nest].depth; }

int ConditionsOf(const BlockTable& table, LineState state) {
    return static_cast<int>(table.sets[SetOf(state)].conditions);
}

BlockKind InnermostOf(const BlockTable& table, LineState state) {
    return table.nests[table.sets[SetOf(state)].nest].kind;
}

std::vector<BlockKind> OpenBlocks(const BlockTable& table, LineState state) {
    std::vector<BlockKind> open;
    for (std::uint32_t nest = table.sets[SetOf(state)].nest; nest != 0; nest = table.nests[nest].parent)
        open.push_back(table.nests[nest].kind);
    std::ranges::reverse(open);
    return open;
}

LineState ScanBlocks(BlockTable& table, std::string_view line, std::span<Token> tokens, LineState before,
                     ScanState scanned, const Dialect& dialect, BlockLine& out) {
    const BlockTable::Set set = table.sets[SetOf(before)];
    const BlockKind innermost = table.nests[set.nest].kind;
    if (innermost == Type || innermost == Union || innermost == Enum) MarkListedNames(line, tokens, dialect);
    out.events.clear();
    Walk walk{table, dialect, line, tokens, out, set.nest, set.outer, StepOf(before)};
    out.depth = walk.Depth();
    out.lowest = walk.Total();
    walk.firstStatement = (before & kScanContinues) == 0;
    for (std::uint32_t i = 0; i < tokens.size(); ++i) WalkToken(walk, i);
    if ((scanned & kScanAssembly) != 0 && (before & kScanAssembly) == 0) OpenBlock(walk, Asm, walk.first);
    if ((scanned & kScanContinues) == 0) {
        if (!tokens.empty() || walk.step != kStart)
            StepAfterStatement(walk, static_cast<std::uint32_t>(tokens.size()) - 1);
        walk.step = kStart;
    }
    std::uint32_t number = SetOf(before);
    if (walk.nest != set.nest || walk.outer != set.outer) number = NumberOfSet(table, walk.nest, walk.outer);
    return (scanned & kScanStateMask) | static_cast<LineState>(walk.step) << kScanStateBits | number << kSetShift;
}

FoldLevel FoldLevelOf(const BlockTable& table, LineState before, LineState after, const BlockLine& line) {
    const auto total = [&table](LineState state) {
        return DepthOf(table, state) + ConditionsOf(table, state) + ((state & kScanComment) != 0 ? 1 : 0);
    };
    const int start = total(before);
    const bool inComment = (before & after & kScanComment) != 0;
    const int lowest = std::min(line.lowest + (inComment ? 1 : 0), start);
    const bool header = total(after) > lowest;
    return {header ? lowest : start, header};
}
