#include "disasm/listing_text.h"

#include "base/hex_digit.h"
#include "disasm/code_text.h"
#include "program/visible_text.h"

#include <Zydis/Zydis.h>

#include <algorithm>
#include <array>
#include <unordered_set>

namespace {

constexpr std::size_t kTab = 8;
constexpr std::size_t kIndent = 8;  // blanks before an instruction without an address
constexpr std::size_t kNumberColumn = 6;
constexpr std::size_t kLongestLine = 65536;  // a longer line is made visible, but not parsed

bool IsListingWordCharacter(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c == '.' ||
           c == '$' || c == '@' || c == '?';
}
char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; }

std::string Lowered(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), Lower);
    return lower;
}

std::string_view WithoutOuterBlanks(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    const std::size_t last = text.find_last_not_of(' ');
    return text.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

// Removes the first word of `text` and the blanks after it, and returns the word.
std::string_view TakeWord(std::string_view& text) {
    const std::size_t end = std::min(text.find(' '), text.size());
    const std::string_view word = text.substr(0, end);
    text.remove_prefix(std::min(text.find_first_not_of(' ', end), text.size()));
    return word;
}

bool IsHex(std::string_view text) {
    return !text.empty() && std::all_of(
                                text.begin(), text.end(), [](char c) { return HexValue(c) >= 0; });
}

bool IsMnemonic(std::string_view word) {
    static const std::unordered_set<std::string_view> known = [] {
        // Mnemonics that compilers write besides the decoder's names.
        std::unordered_set<std::string_view> names = {
            "je",    "jne",   "jc",     "jnc",   "ja",     "jae",   "jna",    "jnae",   "jg",    "jge",
            "jng",   "jnge",  "jpe",    "jpo",   "sete",   "setne", "seta",   "setae",  "setc",  "setg",
            "setge", "cmova", "cmovae", "cmovc", "cmove",  "cmovg", "cmovge", "cmovne", "loope", "loopne",
            "sal",   "retn",  "movabs", "iretd", "pushfd", "popfd", "db",     "dw",     "dd",    "dq",
            "dt",    "resb",  "resw",   "resd",  "resq",   "align", "equ"};
        for (int i = 1; i <= ZYDIS_MNEMONIC_MAX_VALUE; ++i)
            if (const char* name = ZydisMnemonicGetString(static_cast<ZydisMnemonic>(i)); name != nullptr)
                names.insert(name);
        return names;
    }();
    return known.contains(Lowered(word));
}

bool IsRegister(std::string_view word) {
    static const std::unordered_set<std::string_view> known = [] {
        std::unordered_set<std::string_view> names;
        for (int i = 1; i <= ZYDIS_REGISTER_MAX_VALUE; ++i)
            if (const char* name = ZydisRegisterGetString(static_cast<ZydisRegister>(i)); name != nullptr)
                names.insert(name);
        return names;
    }();
    return known.contains(Lowered(word));
}

// Whether the text is an instruction. A prefix ("rep movsb") may come before the mnemonic. Prose may begin with a
// mnemonic ("and so on", "Test passed"), but no operand follows it.
bool IsInstruction(std::string_view text) {
    std::string_view rest = text.substr(PrefixLength(Lowered(text.substr(0, 32))));
    const std::string_view mnemonic = TakeWord(rest);
    if (!IsMnemonic(mnemonic)) return false;
    const std::string_view operands = WithoutOuterBlanks(rest.substr(0, rest.find(';')));
    const bool goesSomewhere = Lower(mnemonic[0]) == 'j' || Lowered(mnemonic) == "call";
    return operands.empty() || IsRegister(operands) ||
           operands.find_first_of("0123456789[,'\"") != std::string_view::npos ||
           (goesSomewhere && operands.find(' ') == std::string_view::npos);
}

// True for "NAME:" and nothing else.
bool IsLabel(std::string_view text) {
    return text.size() > 1 && text.back() == ':' && std::all_of(text.begin(), text.end() - 1, IsListingWordCharacter);
}

struct CodeLine {
    std::string_view lineNumber;  // some listings have one before the address
    std::string_view address;     // as in the listing, with its colon
    std::string bytes;            // pairs of digits as in the listing, a blank after each
    std::string_view instruction;
};

// Removes the bytes at the start of `text`: pairs of digits ("48 8B C4") or one word ("488BC4"). A word that is a pair
// of digits and also a mnemonic ("db", "dd") is a byte only as the first one or one blank after the byte before.
void TakeBytes(std::string_view& text, std::string& bytes) {
    const char* end = text.data();
    for (;;) {
        std::string_view rest = text;
        const std::string_view word = TakeWord(rest);
        if (!IsHex(word) || word.size() % 2 != 0 || (!bytes.empty() && word.size() > 2)) return;
        if (!bytes.empty() && word.data() - end > 1 && IsMnemonic(word)) return;
        for (std::size_t i = 0; i < word.size(); i += 2) bytes.append(word.substr(i, 2)).push_back(' ');
        end = word.data() + word.size();
        text = rest;
        if (word.size() > 2) return;
    }
}

// Parses an address of at least four digits, then bytes, then perhaps an instruction.
bool ParseAddressed(std::string_view text, CodeLine* line) {
    line->address = TakeWord(text);
    std::string_view digits = line->address;
    if (digits.ends_with(':')) digits.remove_suffix(1);
    if (digits.size() < 4 || digits.size() > 16 || !IsHex(digits)) return false;
    line->bytes.clear();
    TakeBytes(text, line->bytes);
    line->instruction = text;
    return !line->bytes.empty() && (text.empty() || text[0] == ';' || text[0] == '.' || IsInstruction(text));
}

bool ParseCodeLine(std::string_view text, CodeLine* line) {
    if (ParseAddressed(text, line)) return true;
    std::string_view rest = text;
    const std::string_view number = TakeWord(rest);
    const bool isNumber = !number.empty() && number.size() <= 6 &&
                          std::all_of(number.begin(), number.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (!isNumber || !ParseAddressed(rest, line)) return false;
    line->lineNumber = number;
    return true;
}

std::string RenderCode(const CodeLine& line, bool bytes) {
    std::string out;
    if (!line.lineNumber.empty()) out.append(kNumberColumn - std::min(kNumberColumn, line.lineNumber.size()), ' ');
    out += line.lineNumber;
    out.append("  ").append(line.address).append("  ");
    if (!bytes && !line.instruction.empty()) {
        AppendAligned(out, line.instruction);
        return out;
    }
    out += line.bytes;
    if (line.instruction.empty()) {
        out.pop_back();
        return out;
    }
    if (line.bytes.size() < kBytesColumn) out.append(kBytesColumn - line.bytes.size(), ' ');
    AppendAligned(out, line.instruction);
    return out;
}

}  // namespace

std::string DisasmListingLine(std::string_view line, bool bytes) {
    std::string visible = VisibleText(line, kTab);
    visible.resize(visible.find_last_not_of(' ') + 1);  // npos + 1 is 0
    if (visible.size() > kLongestLine) return visible;
    const std::string_view text = WithoutOuterBlanks(visible);
    CodeLine code;
    if (ParseCodeLine(text, &code)) return RenderCode(code, bytes);
    if (IsLabel(text)) return std::string(text);
    if (text.empty() || text[0] == ';' || !IsInstruction(text)) return visible;
    std::string out(kIndent, ' ');
    AppendAligned(out, text);
    return out;
}

bool DisasmListingNext(DisasmListing& listing, std::size_t budget, std::string* out) {
    std::string_view& rest = listing.rest;
    for (; budget > 0 && !rest.empty(); --budget) {
        const std::size_t end = std::min(rest.find_first_of("\r\n"), rest.size());
        *out += DisasmListingLine(rest.substr(0, end), listing.bytes) + "\r\n";
        const bool pair = rest.substr(end).starts_with("\r\n");
        rest.remove_prefix(std::min(end + (pair ? 2 : 1), rest.size()));
    }
    return !rest.empty();
}
