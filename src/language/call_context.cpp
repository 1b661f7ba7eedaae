// Finds the calls around a place by the tokens before it. Pure.
#include "language/call_context.h"

#include <algorithm>
#include <optional>

namespace {

constexpr std::size_t kDeepest = 200;  // parentheses; what is deeper is no text that anyone writes

struct Walk {
    std::string_view text;
    const Dialect& dialect;
    std::vector<Token> tokens;        // before the place, their starts counted from the start of the text
    std::size_t statement = 0;        // index of the first token of the statement
    bool begins = true;               // the next word begins a statement
    bool heading = false;             // SUB, DECLARE and the like: no calls
    bool variables = false;           // DIM and the like: names outside parentheses are no calls
    bool silent = false;              // assembly, metastatement
    std::optional<CallContext> call;  // of the statement itself
    bool target = false;              // so far only the name of `call`, which may be what is assigned to
    bool subscript = false;           // that name is followed by parentheses
    std::vector<CallContext> open;    // parentheses; without a name: of an expression
    std::size_t tooDeep = 0;          // further ones
};

std::string_view TextAt(const Walk& walk, std::size_t index) { return TokenText(walk.text, walk.tokens[index]); }

std::string InCapitals(std::string_view word) {
    std::string capitals(word);
    for (char& c : capitals)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
    return capitals;
}

WordInfo WordOf(const Walk& walk, const Token& token) {
    if (token.kind != TokenKind::Word || token.Is(kTokenName)) return {};
    return LookUpWord(TokenName(walk.text, token), walk.dialect);
}

// Before a dot: the names from the left. Stops at what has no name.
std::vector<std::string> QualifierBefore(const Walk& walk, std::size_t dot) {
    std::vector<std::string> names;
    for (std::size_t at = dot; at > walk.statement;) {
        --at;
        if (TextAt(walk, at) == ")") {
            int depth = 1;
            while (at > walk.statement && depth > 0) {
                const std::string_view text = TextAt(walk, --at);
                depth += text == ")" ? 1 : text == "(" ? -1 : 0;
            }
            if (at == walk.statement) return {};
            --at;
        }
        if (walk.tokens[at].kind != TokenKind::Word) return {};
        names.insert(names.begin(), std::string(TokenName(walk.text, walk.tokens[at])));
        if (at == walk.statement || TextAt(walk, at - 1) != ".") break;
        --at;
    }
    return names;
}

// The call of the word at `index`, whose arguments begin at `argumentsStart`.
CallContext CallOf(const Walk& walk, std::size_t index, std::size_t argumentsStart) {
    const Token& word = walk.tokens[index];
    CallContext call;
    call.name = TokenName(walk.text, word);
    call.nameStart = word.start;
    call.argumentsStart = argumentsStart;
    call.isMember = word.Is(kTokenName) && index > walk.statement && TextAt(walk, index - 1) == ".";
    if (call.isMember) call.qualifier = QualifierBefore(walk, index - 1);
    return call;
}

bool IsHeading(BasicWord word) {
    switch (word) {
        case BasicWord::Callback:
        case BasicWord::Class:
        case BasicWord::Declare:
        case BasicWord::Export:
        case BasicWord::FastProc:
        case BasicWord::Function:
        case BasicWord::Interface:
        case BasicWord::Macro:
        case BasicWord::Method:
        case BasicWord::Override:
        case BasicWord::Private:
        case BasicWord::Property:
        case BasicWord::Public:
        case BasicWord::Sub: return true;
        default: return false;
    }
}

bool DeclaresVariables(BasicWord word) {
    switch (word) {
        case BasicWord::Dim:
        case BasicWord::Global:
        case BasicWord::Instance:
        case BasicWord::Local:
        case BasicWord::ReDim:
        case BasicWord::Register:
        case BasicWord::Static:
        case BasicWord::Threaded: return true;
        default: return false;
    }
}

// The statement begins with the token at `index`, or with the one after it.
void BeginStatement(Walk& walk, std::size_t index) {
    walk.statement = index;
    walk.begins = true;
    walk.heading = walk.variables = walk.silent = walk.target = walk.subscript = false;
    walk.call.reset();
    walk.open.clear();
    walk.tooDeep = 0;
}

void TakeFirstWord(Walk& walk) {
    const Token& word = walk.tokens.back();
    const BasicWord id = WordOf(walk, word).word;
    walk.begins = id == BasicWord::Call || id == BasicWord::Else;  // then the next word begins it
    if (walk.begins) return;
    walk.heading = walk.heading || IsHeading(id);
    walk.variables = DeclaresVariables(id);
    walk.call = CallOf(walk, walk.tokens.size() - 1, word.End());
    walk.call->startsStatement = true;
    walk.target = true;
    walk.subscript = false;
}

// A word among the arguments of a statement.
void TakeFurtherWord(Walk& walk) {
    const std::size_t index = walk.tokens.size() - 1;
    const WordInfo info = WordOf(walk, walk.tokens[index]);
    const bool then = info.word == BasicWord::Then || info.word == BasicWord::Else;
    if (then) return BeginStatement(walk, index);
    // STATIC SUB, THREAD FUNCTION
    const bool second = index == walk.statement + 1;
    if (second && walk.variables && IsHeading(info.word)) walk.heading = true;
    if (second && info.word == BasicWord::Function && WordOf(walk, walk.tokens[index - 1]).word == BasicWord::Thread)
        walk.heading = true;
    if (!walk.call) return;
    const std::size_t before = index - 1;
    if (walk.target && TextAt(walk, before) == ".") {  // a method of what the statement begins with
        CallContext call = CallOf(walk, index, walk.tokens[index].End());
        call.startsStatement = true;
        walk.call = std::move(call);
        walk.subscript = false;
        return;
    }
    const bool isKeyword = info.kind == WordClass::Statement || info.kind == WordClass::Function;
    if (walk.target && !walk.subscript) walk.call->second = InCapitals(TokenName(walk.text, walk.tokens[index]));
    walk.target = false;
    if (!isKeyword) return;
    walk.call->keyword = InCapitals(TokenName(walk.text, walk.tokens[index]));
    walk.call->afterKeyword = 0;
}

void OpenParenthesis(Walk& walk) {
    if (walk.open.size() == kDeepest) {
        ++walk.tooDeep;
        return;
    }
    const std::size_t index = walk.tokens.size() - 1;
    const std::size_t end = walk.tokens[index].End();
    CallContext call;
    const bool named = TextAt(walk, index) == "(" && index > walk.statement &&
                       walk.tokens[index - 1].kind == TokenKind::Word && !(walk.variables && walk.open.empty());
    if (named) {
        call = CallOf(walk, index - 1, end);
        call.parentheses = true;
        call.startsStatement = walk.open.empty() && walk.target;
    }
    if (walk.open.empty() && walk.target) walk.subscript = true;
    walk.open.push_back(std::move(call));
}

void CloseParenthesis(Walk& walk) {
    if (walk.tooDeep > 0)
        --walk.tooDeep;
    else if (!walk.open.empty())
        walk.open.pop_back();
}

void TakeComma(Walk& walk) {
    if (!walk.open.empty()) {
        if (walk.tooDeep == 0) ++walk.open.back().argument;
        return;
    }
    walk.target = false;
    if (!walk.call) return;
    ++walk.call->argument;
    ++walk.call->afterKeyword;
}

void TakeOther(Walk& walk, std::string_view text) {
    if (!walk.open.empty()) return;
    const bool assigns = text.ends_with('=') && text != "<=" && text != ">=" && text != "==";
    if (assigns && (walk.target || walk.heading)) {
        walk.call.reset();
        walk.heading = false;
    }
    const std::size_t index = walk.tokens.size() - 1;
    const bool behindName = walk.target || (walk.call && walk.call->argument == 0 && index == walk.statement + 2);
    if (walk.call && behindName && text == "#") walk.call->file = true;  // PRINT #, LINE INPUT #
    if (text != ".") walk.target = false;
}

// Whether the caret behind the last token is still in it.
bool EndsInComment(const Walk& walk) {
    if (walk.tokens.empty() || walk.tokens.back().kind != TokenKind::Comment) return false;
    const Token& comment = walk.tokens.back();
    const bool closed =
        !comment.Is(kTokenOpen) && TokenText(walk.text, comment).ends_with("'/") && walk.dialect.blockComments;
    return comment.Is(kTokenOpen) || (comment.End() == walk.text.size() && !closed);
}

void TakeToken(Walk& walk) {
    const Token& token = walk.tokens.back();
    const bool starts = token.Is(kTokenStarts) && token.kind != TokenKind::Comment;
    if (starts || token.kind == TokenKind::Separator) BeginStatement(walk, walk.tokens.size() - 1);
    if (token.Is(kTokenAssembly) || token.kind == TokenKind::Directive || token.kind == TokenKind::Data)
        walk.silent = true;
    if (walk.silent || token.kind == TokenKind::Comment || token.kind == TokenKind::Continuation) return;
    const std::string_view text = TokenText(walk.text, token);
    if (token.kind == TokenKind::Word) {
        if (walk.begins)
            TakeFirstWord(walk);
        else if (walk.open.empty())
            TakeFurtherWord(walk);
        return;
    }
    if (token.kind == TokenKind::LineNumber || token.kind == TokenKind::Separator) return;
    walk.begins = false;
    if (text == "(" || text == "[" || text == "{")
        OpenParenthesis(walk);
    else if (text == ")" || text == "]" || text == "}")
        CloseParenthesis(walk);
    else if (text == "," || text == ";")
        TakeComma(walk);
    else
        TakeOther(walk, text);
}

}  // namespace

std::vector<CallContext> CallsAround(std::string_view text, ScanState state, const Dialect& dialect) {
    Walk walk{.text = text, .dialect = dialect};
    LineReader reader{.text = text, .dialect = &dialect, .state = state};
    while (ReadLine(reader)) {
        if ((reader.before & kScanContinues) == 0) BeginStatement(walk, walk.tokens.size());
        for (Token token : reader.tokens) {
            token.start += static_cast<std::uint32_t>(reader.start);
            walk.tokens.push_back(token);
            TakeToken(walk);
        }
    }
    const bool inBlockComment = (reader.state & kScanComment) != 0;
    const bool inStatement = (reader.ending.empty() || (reader.state & kScanContinues) != 0);
    if (inBlockComment || !inStatement || EndsInComment(walk) || walk.silent) return {};
    if (walk.heading) return {};
    std::vector<CallContext> calls;
    for (std::size_t i = walk.open.size(); i > 0; --i)
        if (!walk.open[i - 1].name.empty()) calls.push_back(std::move(walk.open[i - 1]));
    // Behind "Name(...)" the arguments are over, unless more follows.
    const bool parenthesized = walk.target && walk.subscript;
    if (walk.call && !parenthesized && walk.call->argumentsStart < text.size()) calls.push_back(std::move(*walk.call));
    return calls;
}
