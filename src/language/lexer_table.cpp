// The lexer of a file extension, its keyword sets, and the text role of each of its styles. Pure.
#include "language/lexer_table.h"

#include "base/path.h"
#include "language/asm_words.h"
#include "language/basic_lexer.h"

#include <SciLexer.h>

#include <array>

namespace {

constexpr StyleRole kBasicStyles[] = {
    {SCE_B_COMMENT, TextRole::Comment},       {SCE_B_NUMBER, TextRole::Number},
    {SCE_B_KEYWORD, TextRole::Keyword},       {SCE_B_STRING, TextRole::String},
    {SCE_B_OPERATOR, TextRole::Operator},     {SCE_B_PREPROCESSOR, TextRole::Preprocessor},
    {SCE_B_IDENTIFIER, TextRole::Identifier}, {SCE_B_STRINGEOL, TextRole::Error},
    {SCE_B_KEYWORD2, TextRole::Type},         {SCE_B_KEYWORD3, TextRole::Function},
    {SCE_B_KEYWORD4, TextRole::Keyword},      {SCE_B_CONSTANT, TextRole::Number},
    {SCE_B_ASM, TextRole::Assembly},          {SCE_B_LABEL, TextRole::Label},
};
constexpr StyleRole kCStyles[] = {
    {SCE_C_COMMENT, TextRole::Comment},
    {SCE_C_COMMENTLINE, TextRole::Comment},
    {SCE_C_COMMENTDOC, TextRole::Comment},
    {SCE_C_COMMENTLINEDOC, TextRole::Comment},
    {SCE_C_COMMENTDOCKEYWORD, TextRole::Comment},
    {SCE_C_COMMENTDOCKEYWORDERROR, TextRole::Comment},
    {SCE_C_NUMBER, TextRole::Number},
    {SCE_C_USERLITERAL, TextRole::Number},
    {SCE_C_WORD, TextRole::Keyword},
    {SCE_C_WORD2, TextRole::Type},
    {SCE_C_STRING, TextRole::String},
    {SCE_C_STRINGRAW, TextRole::String},
    {SCE_C_CHARACTER, TextRole::String},
    {SCE_C_ESCAPESEQUENCE, TextRole::String},
    {SCE_C_STRINGEOL, TextRole::Error},
    {SCE_C_PREPROCESSOR, TextRole::Preprocessor},
    {SCE_C_PREPROCESSORCOMMENT, TextRole::Comment},
    {SCE_C_OPERATOR, TextRole::Operator},
    {SCE_C_IDENTIFIER, TextRole::Identifier},
};
constexpr StyleRole kAssemblyStyles[] = {
    {SCE_ASM_COMMENT, TextRole::Comment},
    {SCE_ASM_COMMENTBLOCK, TextRole::Comment},
    {SCE_ASM_COMMENTDIRECTIVE, TextRole::Comment},
    {SCE_ASM_NUMBER, TextRole::Number},
    {SCE_ASM_STRING, TextRole::String},
    {SCE_ASM_CHARACTER, TextRole::String},
    {SCE_ASM_STRINGEOL, TextRole::Error},
    {SCE_ASM_OPERATOR, TextRole::Operator},
    {SCE_ASM_IDENTIFIER, TextRole::Identifier},
    {SCE_ASM_CPUINSTRUCTION, TextRole::Keyword},
    {SCE_ASM_MATHINSTRUCTION, TextRole::Function},
    {SCE_ASM_EXTINSTRUCTION, TextRole::Function},
    {SCE_ASM_REGISTER, TextRole::Type},
    {SCE_ASM_DIRECTIVE, TextRole::Preprocessor},
    {SCE_ASM_DIRECTIVEOPERAND, TextRole::Preprocessor},
};

constexpr LanguageLexer kLexers[] = {
    {kBasicLexerName, kBasicStyles}, {"cpp", kCStyles}, {"asm", kAssemblyStyles},
    {"as", kAssemblyStyles},         {nullptr, {}},
};

constexpr std::string_view kCKeywords =
    "alignas alignof asm auto break case catch class const const_cast constexpr continue default delete do "
    "dynamic_cast else enum explicit extern false final for friend goto if inline mutable namespace new noexcept "
    "nullptr operator override private protected public register reinterpret_cast restrict return sizeof static "
    "static_assert static_cast struct switch template this throw true try typedef typeid typename union using virtual "
    "volatile while _Alignas _Alignof _Atomic _Generic _Noreturn _Static_assert _Thread_local";
constexpr std::string_view kCTypes =
    "bool char double float int long short signed unsigned void wchar_t char8_t char16_t char32_t size_t ssize_t "
    "ptrdiff_t intptr_t uintptr_t int8_t int16_t int32_t int64_t uint8_t uint16_t uint32_t uint64_t FILE BOOL BYTE "
    "WORD "
    "DWORD LONG LPARAM WPARAM LRESULT HANDLE HWND HINSTANCE _Bool";

}  // namespace

Language LexerFromExtension(std::wstring_view path) {
    const std::wstring_view extension = FileExtension(path);
    if (extension.empty()) return Language::Basic;
    const FileType* type = FileTypeOfExtension(extension);
    return type != nullptr ? type->language : Language::None;
}

const LanguageLexer& LexerOf(Language language) { return kLexers[static_cast<std::size_t>(language)]; }

std::string LexerKeywords(Language language, int set) {
    constexpr std::array<std::string_view, 2> kC = {kCKeywords, kCTypes};
    constexpr std::array<AsmClass, 6> kAssembly = {AsmClass::Instruction, AsmClass::Math,    AsmClass::Register,
                                                   AsmClass::Directive,   AsmClass::Operand, AsmClass::Extended};
    const auto number = static_cast<std::size_t>(set);
    if (language == Language::C && number < kC.size()) return std::string(kC[number]);
    const bool assembly = language == Language::Assembly || language == Language::GnuAssembly;
    if (assembly && number < kAssembly.size()) return std::string(AsmWordsOf(kAssembly[number]));
    return {};
}
