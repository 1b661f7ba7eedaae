// The lexer of a file extension, its keyword sets, and the text role of each of its styles. Pure.
#include "language/lexer_table.h"

#include "base/path.h"
#include "language/basic_words.h"

#include <SciLexer.h>

#include <array>

namespace {

constexpr StyleRole kBasicStyles[] = {
    {SCE_B_COMMENT, TextRole::Comment},           {SCE_B_NUMBER, TextRole::Number},
    {SCE_B_KEYWORD, TextRole::Keyword},           {SCE_B_STRING, TextRole::String},
    {SCE_B_PREPROCESSOR, TextRole::Preprocessor}, {SCE_B_OPERATOR, TextRole::Operator},
    {SCE_B_IDENTIFIER, TextRole::Identifier},     {SCE_B_DATE, TextRole::Number},
    {SCE_B_STRINGEOL, TextRole::Error},           {SCE_B_KEYWORD2, TextRole::Type},
    {SCE_B_KEYWORD3, TextRole::Function},         {SCE_B_KEYWORD4, TextRole::Keyword},
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

// Of Lexilla's BASIC lexers, "vb" is taken because it ends strings, comments and directives at the end of their line: a
// missing quote does not recolour the rest of the file. It also knows REM, type suffixes and several keyword sets.
constexpr LanguageLexer kLexers[] = {
    {"vb", kBasicStyles}, {"cpp", kCStyles}, {"asm", kAssemblyStyles}, {"as", kAssemblyStyles}, {nullptr, {}},
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

constexpr std::string_view kAsmInstructions =
    "adc add and bsf bsr bswap bt btc btr bts call cbw cdq cdqe clc cld cli cmc cmova cmovae cmovb cmovbe cmove cmovg "
    "cmovge cmovl cmovle cmovne cmovs cmp cmps cmpsb cmpsd cmpsq cmpsw cmpxchg cpuid cqo cwd cwde dec div enter hlt "
    "idiv imul in inc int int3 iret ja jae jb jbe jc jcxz je jecxz jg jge jl jle jmp jna jnae jnb jnbe jnc jne jng "
    "jnge "
    "jnl jnle jno jnp jns jnz jo jp jpe jpo jrcxz js jz lahf lea leave lock lods lodsb lodsd lodsq lodsw loop loope "
    "loopne mov movabs movs movsb movsd movsq movsw movsx movsxd movzx mul neg nop not or out pause pop popa popad "
    "popf "
    "popfq push pusha pushad pushf pushfq rcl rcr rdtsc rep repe repne repnz repz ret retn rol ror sahf sal sar sbb "
    "scas scasb scasd scasq scasw seta setae setb setbe sete setg setge setl setle setne setnz sets setz shl shld shr "
    "shrd stc std sti stos stosb stosd stosq stosw sub syscall test ud2 xadd xchg xlat xor";
constexpr std::string_view kAsmMath =
    "f2xm1 fabs fadd faddp fchs fclex fcom fcomi fcomp fcos fdiv fdivp fild finit fist fistp fld fld1 fldcw fldpi fldz "
    "fmul fmulp fnstcw fpatan fprem fptan frndint fscale fsin fsqrt fst fstp fstsw fsub fsubp ftst fwait fxch fyl2x";
constexpr std::string_view kAsmRegisters =
    "ah al ax bh bl bp bpl bx ch cl cr0 cr2 cr3 cr4 cs cx dh di dil dl ds dx eax ebp ebx ecx edi edx eip es esi esp fs "
    "gs mm0 mm1 mm2 mm3 mm4 mm5 mm6 mm7 r10 r10b r10d r10w r11 r11b r11d r11w r12 r12b r12d r12w r13 r13b r13d r13w "
    "r14 "
    "r14b r14d r14w r15 r15b r15d r15w r8 r8b r8d r8w r9 r9b r9d r9w rax rbp rbx rcx rdi rdx rip rsi rsp si sil sp spl "
    "ss st st0 st1 st2 st3 st4 st5 st6 st7 xmm0 xmm1 xmm2 xmm3 xmm4 xmm5 xmm6 xmm7 xmm8 xmm9 xmm10 xmm11 xmm12 xmm13 "
    "xmm14 xmm15 ymm0 ymm1 ymm2 ymm3 ymm4 ymm5 ymm6 ymm7 ymm8 ymm9 ymm10 ymm11 ymm12 ymm13 ymm14 ymm15";
constexpr std::string_view kAsmDirectives =
    "align assume bits comm common db dd default dq dt dw dup else elseif end endif endm endp ends equ even "
    "export "
    "extern extrn global if ifdef ifndef include includelib incbin invoke label local macro model option org proc "
    "proto "
    "public rb rd resb resd resq resw rq rw section segment struct times title use32 use64 .align .ascii .asciz "
    ".att_syntax "
    ".balign .bss .byte .code .const .data .double .endm .equ .extern .fill .float .globl .global .if .else .endif "
    ".include "
    ".int .intel_syntax .long .macro .model .org .p2align .quad .rva .secrel32 .section .set .short .space .string "
    ".text "
    ".type .word .zero";
constexpr std::string_view kAsmOperands =
    "byte dword far flat fword near offset oword ptr qword short tbyte word xmmword ymmword noprefix";
constexpr std::string_view kAsmExtended =
    "addpd addps addsd addss andpd andps comisd comiss cvtdq2pd cvtsd2si cvtsd2ss cvtsi2sd cvtsi2ss cvtss2sd cvttsd2si "
    "divpd divps divsd divss maxsd maxss minsd minss movapd movaps movd movdqa movdqu movhlps movlps movq movss movupd "
    "movups mulpd mulps mulsd mulss orpd orps paddb paddd paddq paddw pand pcmpeqb pcmpeqd pmovmskb por pshufd pslld "
    "psrld "
    "psubd pxor shufps sqrtpd sqrtps sqrtsd sqrtss subpd subps subsd subss ucomisd ucomiss unpcklps xorpd xorps";

// The four sets that the lexer of BASIC takes.
std::string BasicWords(const Dialect& dialect, int set) {
    switch (set) {
        case 0: return WordsOf(WordClass::Statement, dialect) + " " + WordsOf(WordClass::Operator, dialect);
        case 1: return WordsOf(WordClass::Type, dialect);
        case 2: return WordsOf(WordClass::Function, dialect);
        case 3: return WordsOf(WordClass::Entry, dialect);
        default: return {};
    }
}

}  // namespace

Language LexerFromExtension(std::wstring_view path) {
    const std::wstring_view extension = FileExtension(path);
    if (extension.empty()) return Language::Basic;
    const FileType* type = FileTypeOfExtension(extension);
    return type != nullptr ? type->language : Language::None;
}

const LanguageLexer& LexerOf(Language language) { return kLexers[static_cast<std::size_t>(language)]; }

std::string LexerKeywords(Language language, std::uint32_t compilerId, int set) {
    constexpr std::array<std::string_view, 2> kC = {kCKeywords, kCTypes};
    constexpr std::array<std::string_view, 6> kAssembly = {kAsmInstructions, kAsmMath,     kAsmRegisters,
                                                           kAsmDirectives,   kAsmOperands, kAsmExtended};
    if (language == Language::Basic) return BasicWords(DialectOf(compilerId), set);
    std::span<const std::string_view> sets;
    if (language == Language::C) sets = kC;
    if (language == Language::Assembly || language == Language::GnuAssembly) sets = kAssembly;
    return set >= 0 && static_cast<std::size_t>(set) < sets.size() ? std::string(sets[static_cast<std::size_t>(set)])
                                                                   : std::string();
}
