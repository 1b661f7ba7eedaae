// Makes signatures and the texts of call tips. Pure.
#include "completion/call_tip.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::size_t kMostTipLines = 10;  // of a declaration; more would hide the text
constexpr std::string_view kIndent = "    ";

bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
bool IsWordByte(char c) { return IsLetter(c) || (c >= '0' && c <= '9') || c == '_'; }

std::string_view KindWord(SymbolKind kind) {
    switch (kind) {
        case SymbolKind::Sub: return "SUB ";
        case SymbolKind::Function: return "FUNCTION ";
        case SymbolKind::Method: return "METHOD ";
        case SymbolKind::Property: return "PROPERTY GET ";
        case SymbolKind::PropertySet: return "PROPERTY SET ";
        case SymbolKind::FastProc: return "FASTPROC ";
        case SymbolKind::Macro: return "MACRO ";
        default: return "";
    }
}

// Adds what stands from `start` to `end` as a parameter, without the blanks and brackets around it.
void AddParameter(Signature& signature, std::size_t start, std::size_t end, std::string keyword) {
    const std::string& text = signature.text;
    while (start < end && std::string_view(" [],#=;").find(text[start]) != std::string_view::npos) ++start;
    while (end > start && std::string_view(" [,=;").find(text[end - 1]) != std::string_view::npos) --end;
    const auto count = [&](char c) {
        const auto begin = text.begin();
        return std::count(begin + static_cast<std::ptrdiff_t>(start), begin + static_cast<std::ptrdiff_t>(end), c);
    };
    while (end > start && text[end - 1] == ']' && count(']') > count('[')) --end;
    while (end > start && text[end - 1] == ' ') --end;
    const std::string_view words = std::string_view(text).substr(start, end - start);
    if (words == "...")
        signature.open = true;
    else if (!words.empty())
        signature.parameters.push_back({start, end, std::move(keyword)});
}

// The parameters in the parentheses that open at `open`.
void TakeParenthesized(Signature& signature, std::size_t open) {
    signature.parentheses = true;
    int depth = 0;
    bool quoted = false;
    std::size_t start = open + 1;
    for (std::size_t at = open; at < signature.text.size(); ++at) {
        const char c = signature.text[at];
        if (c == '"') quoted = !quoted;
        if (quoted) continue;
        if (c == '(') ++depth;
        const bool closes = c == ')' && --depth == 0;
        if (!closes && !(c == ',' && depth == 1)) continue;
        AddParameter(signature, start, at, {});
        start = at + 1;
        if (!closes) continue;
        signature.assigns = signature.text.compare(at + 1, 2, " =") == 0;
        return;
    }
}

// The parameters of a statement: divided by commas and by words in capitals.
void TakeStatement(Signature& signature, std::size_t name) {
    const std::string& text = signature.text;
    std::string keyword;
    std::size_t start = name;
    int depth = 0;
    signature.file = text.compare(name, 2, " #") == 0;
    for (std::size_t at = name; at < text.size(); ++at) {
        if (text[at] == '(') ++depth;
        if (text[at] == ')') --depth;
        if (depth == 0 && (text[at] == ',' || text[at] == ';')) {
            AddParameter(signature, start, at, std::exchange(keyword, {}));
            start = at + 1;
        }
        if (depth != 0 || !IsLetter(text[at])) continue;
        std::size_t end = at;
        while (end < text.size() && IsWordByte(text[end])) ++end;
        const std::string word = text.substr(at, end - at);
        if (std::ranges::all_of(word, [](char c) { return c >= 'A' && c <= 'Z'; })) {
            AddParameter(signature, start, at, std::exchange(keyword, word));
            if (at == name + 1) {
                signature.second = word;
                signature.file = text.compare(end, 2, " #") == 0;
            }
            start = end;
        }
        at = end - 1;
    }
    AddParameter(signature, start, text.size(), keyword);
}

std::string InOneLine(std::string_view text) {
    std::string line(text);
    for (char& c : line)
        if (static_cast<unsigned char>(c) < ' ') c = ' ';
    return line;
}

// --- Lines

struct Piece {
    std::size_t start, end;  // of the text; the blanks behind it are not in it
};

// What stays on one line: a parameter with its comma, else a word.
std::vector<Piece> PiecesOf(std::string_view text, std::span<const SignatureParameter> parameters, std::size_t room) {
    std::vector<Piece> pieces;
    for (std::size_t at = 0; at < text.size();) {
        if (text[at] == ' ') {
            ++at;
            continue;
        }
        std::size_t end = at;
        for (const SignatureParameter& parameter : parameters)
            if (at <= parameter.start && parameter.start < text.find(' ', at) && parameter.end - at <= room)
                end = std::max(end, parameter.end);
        end = std::min(text.find(' ', end), text.size());
        pieces.push_back({at, end});
        at = end;
    }
    return pieces;
}

std::size_t ColumnsOf(std::string_view utf8) {
    return static_cast<std::size_t>(std::ranges::count_if(
        utf8, [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

std::vector<Piece> LinesOf(std::string_view text, std::span<const SignatureParameter> parameters, std::size_t columns) {
    std::vector<Piece> lines;
    for (const Piece& piece : PiecesOf(text, parameters, columns)) {
        const std::size_t indent = lines.size() > 1 ? kIndent.size() : 0;
        const bool fits =
            !lines.empty() &&
            indent + ColumnsOf(text.substr(lines.back().start, piece.end - lines.back().start)) <= columns;
        if (fits)
            lines.back().end = piece.end;
        else
            lines.push_back(piece);
    }
    return lines;
}

// Appends the lines to the tip, those around the marked bytes when there are too many.
void AppendLines(TipText& tip, std::string_view text, std::span<const Piece> lines, std::size_t start,
                 std::size_t end) {
    std::size_t marked = 0;
    while (marked + 1 < lines.size() && lines[marked + 1].start <= start) ++marked;
    std::size_t first = 0;
    if (lines.size() > kMostTipLines && marked > kMostTipLines / 2)
        first = std::min(marked - kMostTipLines / 2, lines.size() - kMostTipLines);
    const std::size_t last = std::min(first + kMostTipLines, lines.size());
    if (first > 0) tip.text += "...";
    for (std::size_t i = first; i < last; ++i) {
        if (i > 0) tip.text.append("\n").append(kIndent);
        const Piece& line = lines[i];
        if (end > start && start < line.end && end > line.start) {
            const std::size_t from = tip.text.size() + std::max(start, line.start) - line.start;
            if (tip.end == 0) tip.start = from;
            tip.end = tip.text.size() + std::min(end, line.end) - line.start;
        }
        tip.text.append(text.substr(line.start, line.end - line.start));
    }
    if (last < lines.size()) tip.text += " ...";
}

}  // namespace

Signature SignatureOfSymbol(const SymbolTable& table, const Symbol& symbol) {
    Signature signature;
    std::string name(KindWord(symbol.kind));
    name += SymbolName(table, symbol);
    const std::string_view type = SymbolType(table, symbol);
    const bool suffix = !type.empty() && !IsLetter(type.front());
    if (suffix) name += type;
    signature.text = InOneLine(name + std::string(SymbolDetail(table, symbol)));
    if (!type.empty() && !suffix) signature.text.append(" AS ").append(InOneLine(type));
    if (name.size() < signature.text.size() && signature.text[name.size()] == '(')
        TakeParenthesized(signature, name.size());
    return signature;
}

Signature SignatureOfBuiltin(const Builtin& builtin) {
    Signature signature{.text = std::string(builtin.signature), .note = std::string(builtin.text)};
    const std::size_t name = BuiltinName(builtin).size();
    if (name < signature.text.size() && signature.text[name] == '(')
        TakeParenthesized(signature, name);
    else if (signature.text.compare(name, 4, " AS ") != 0)
        TakeStatement(signature, name);
    return signature;
}

std::optional<std::size_t> ParameterAt(const Signature& signature, const CallContext& call) {
    const auto& all = signature.parameters;
    std::size_t index = call.argument;
    if (!call.parentheses && !call.keyword.empty()) {
        const auto found = std::ranges::find(all, call.keyword, &SignatureParameter::keyword);
        if (found != all.end()) index = static_cast<std::size_t>(found - all.begin()) + call.afterKeyword;
    }
    if (index < all.size()) return index;
    return signature.open && !all.empty() ? std::optional(all.size() - 1) : std::nullopt;
}

std::size_t BestSignature(std::span<const Signature> signatures, const CallContext& call) {
    const auto score = [&call](const Signature& signature) {
        int points = ParameterAt(signature, call) || call.argument == 0 ? 1 : 0;
        if (signature.parentheses == call.parentheses) points += 2;
        if (signature.assigns == (call.startsStatement && call.parentheses)) points += 4;
        if (signature.file == call.file) points += 4;
        if (!signature.second.empty() || !call.second.empty()) points += signature.second == call.second ? 8 : 0;
        return points;
    };
    return static_cast<std::size_t>(std::ranges::max_element(signatures, {}, score) - signatures.begin());
}

TipText TipTextOf(std::span<const Signature> signatures, std::size_t shown, const CallContext& call,
                  std::size_t columns) {
    const Signature& signature = signatures[shown];
    columns = std::max(columns, kLeastTipColumns);
    TipText tip;
    if (signatures.size() > 1)
        tip.text = "\001 " + std::to_string(shown + 1) + "/" + std::to_string(signatures.size()) + " \002 ";
    const std::size_t arrows = tip.text.size();
    const std::optional<std::size_t> parameter = ParameterAt(signature, call);
    const std::size_t start = parameter ? signature.parameters[*parameter].start : 0;
    const std::size_t end = parameter ? signature.parameters[*parameter].end : 0;
    AppendLines(tip, signature.text, LinesOf(signature.text, signature.parameters, columns - arrows), start, end);
    for (const Piece& line : LinesOf(signature.note, {}, columns))
        tip.text.append("\n").append(signature.note.substr(line.start, line.end - line.start));
    return tip;
}

std::string BrokenLines(std::string_view text, std::size_t columns, std::size_t mostLines) {
    columns = std::max(columns, kLeastTipColumns);
    std::string broken;
    for (std::size_t lines = 0; !text.empty() && lines < mostLines; ++lines) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        const std::size_t blanks = std::min(line.find_first_not_of(' '), line.size());
        TipText part;
        AppendLines(part, line, LinesOf(line, {}, columns - std::min(blanks, columns / 2)), 0, 0);
        if (!broken.empty()) broken += '\n';
        broken.append(line.substr(0, blanks)).append(part.text);
    }
    return broken;
}
