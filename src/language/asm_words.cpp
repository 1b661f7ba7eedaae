// The words of x86 assembly. Pure.
#include "language/asm_words.h"

#include <algorithm>
#include <string>
#include <unordered_map>

namespace {

struct AsmRow {
    AsmClass kind;
    std::string_view words;
};
constexpr AsmRow kAsmWords[] = {
    {AsmClass::Instruction,
     "adc add and bsf bsr bswap bt btc btr bts call cbw cdq cdqe clc cld cli cmc cmova cmovae cmovb cmovbe "
     "cmove cmovg cmovge cmovl cmovle cmovne cmovs cmp cmps cmpsb cmpsd cmpsq cmpsw cmpxchg cpuid cqo cwd "
     "cwde dec div enter hlt idiv imul in inc int int3 iret ja jae jb jbe jc jcxz je jecxz jg jge jl jle jmp "
     "jna jnae jnb jnbe jnc jne jng jnge jnl jnle jno jnp jns jnz jo jp jpe jpo jrcxz js jz lahf lea leave "
     "lock lods lodsb lodsd lodsq lodsw loop loope loopne mov movabs movs movsb movsd movsq movsw movsx "
     "movsxd movzx mul neg nop not or out pause pop popa popad popf popfq push pusha pushad pushf pushfq rcl "
     "rcr rdtsc rep repe repne repnz repz ret retn rol ror sahf sal sar sbb scas scasb scasd scasq scasw seta "
     "setae setb setbe sete setg setge setl setle setne setnz sets setz shl shld shr shrd stc std sti stos "
     "stosb stosd stosq stosw sub syscall test ud2 xadd xchg xlat xor"},
    {AsmClass::Math,
     "f2xm1 fabs fadd faddp fchs fclex fcom fcomi fcomp fcos fdiv fdivp fild finit fist fistp fld fld1 fldcw "
     "fldpi fldz fmul fmulp fnstcw fpatan fprem fptan frndint fscale fsin fsqrt fst fstp fstsw fsub fsubp "
     "ftst fwait fxch fyl2x"},
    {AsmClass::Extended,
     "addpd addps addsd addss andpd andps comisd comiss cvtdq2pd cvtsd2si cvtsd2ss cvtsi2sd cvtsi2ss cvtss2sd "
     "cvttsd2si divpd divps divsd divss maxsd maxss minsd minss movapd movaps movd movdqa movdqu movhlps "
     "movlps movq movss movupd movups mulpd mulps mulsd mulss orpd orps paddb paddd paddq paddw pand pcmpeqb "
     "pcmpeqd pmovmskb por pshufd pslld psrld psubd pxor shufps sqrtpd sqrtps sqrtsd sqrtss subpd subps subsd "
     "subss ucomisd ucomiss unpcklps xorpd xorps"},
    {AsmClass::Register,
     "ah al ax bh bl bp bpl bx ch cl cr0 cr2 cr3 cr4 cs cx dh di dil dl ds dx eax ebp ebx ecx edi edx eip es "
     "esi esp fs gs mm0 mm1 mm2 mm3 mm4 mm5 mm6 mm7 r10 r10b r10d r10w r11 r11b r11d r11w r12 r12b r12d r12w "
     "r13 r13b r13d r13w r14 r14b r14d r14w r15 r15b r15d r15w r8 r8b r8d r8w r9 r9b r9d r9w rax rbp rbx rcx "
     "rdi rdx rip rsi rsp si sil sp spl ss st st0 st1 st2 st3 st4 st5 st6 st7 xmm0 xmm1 xmm2 xmm3 xmm4 xmm5 "
     "xmm6 xmm7 xmm8 xmm9 xmm10 xmm11 xmm12 xmm13 xmm14 xmm15 ymm0 ymm1 ymm2 ymm3 ymm4 ymm5 ymm6 ymm7 ymm8 "
     "ymm9 ymm10 ymm11 ymm12 ymm13 ymm14 ymm15"},
    {AsmClass::Directive,
     "align assume bits comm common db dd default dq dt dw dup else elseif end endif endm endp ends equ even "
     "export extern extrn global if ifdef ifndef include includelib incbin invoke label local macro model "
     "option org proc proto public rb rd resb resd resq resw rq rw section segment struct times title use32 "
     "use64 .align .ascii .asciz .att_syntax .balign .bss .byte .code .const .data .double .endm .equ .extern "
     ".fill .float .globl .global .if .else .endif .include .int .intel_syntax .long .macro .model .org "
     ".p2align .quad .rva .secrel32 .section .set .short .space .string .text .type .word .zero"},
    {AsmClass::Operand,
     "byte dword far flat fword near offset oword ptr qword short tbyte word xmmword ymmword noprefix"},
};

// By word in lower case; of a word in two rows the first counts.
std::unordered_map<std::string_view, AsmClass> MakeAsmTable() {
    std::unordered_map<std::string_view, AsmClass> table;
    for (AsmRow row : kAsmWords)
        while (!row.words.empty()) {
            const std::size_t end = std::min(row.words.find(' '), row.words.size());
            table.emplace(row.words.substr(0, end), row.kind);
            row.words.remove_prefix(std::min(end + 1, row.words.size()));
        }
    return table;
}

}  // namespace

AsmClass AsmClassOf(std::string_view word) {
    static const std::unordered_map<std::string_view, AsmClass> table = MakeAsmTable();
    char lower[16];
    if (word.size() > sizeof lower) return AsmClass::None;
    std::ranges::transform(word, lower, [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    const auto found = table.find({lower, word.size()});
    return found == table.end() ? AsmClass::None : found->second;
}

std::string_view AsmWordsOf(AsmClass kind) {
    const AsmRow* row = std::ranges::find(kAsmWords, kind, &AsmRow::kind);
    return row == std::end(kAsmWords) ? std::string_view() : row->words;
}
