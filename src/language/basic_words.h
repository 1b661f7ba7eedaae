// The words of the five BASIC dialects: what each one is, and an id for those that structure a program. Tables and one
// look-up. Pure; any thread.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

// A dialect of BASIC: what the scanner must know of it besides its words.
struct Dialect {
    std::uint8_t words = 0;      // which words of the table it has
    bool blockComments = false;  // from /' to '/, over any number of lines
};
// The dialect of a compiler; an unknown id gets that of the default compiler.
const Dialect& DialectOf(std::uint32_t compilerId);
// All words of all dialects, for text whose compiler is not known.
const Dialect& AnyDialect();

enum class WordClass : std::uint8_t {
    None,  // no keyword: a name
    Statement,
    Type,
    Operator,      // AND, MOD...
    Preprocessor,  // the word after the "#" of a metastatement; elsewhere it is a name
    Function,      // built in; its name is without the "$"
    Entry,         // PBMAIN and the like: where a program starts
};

// The words by which a program is divided into statements, blocks and declarations. A single word such as ENDIF has an
// id of its own; END and IF are two words.
enum class BasicWord : std::uint8_t {
    None,
    As,
    Asm,
    ByCopy,
    ByRef,
    ByVal,
    Call,
    Callback,
    Case,
    Catch,
    Class,
    Const,
    Data,
    Declare,
    Dim,
    Do,
    Else,
    ElseIf,
    End,
    EndAsm,
    EndClass,
    EndEnum,
    EndFastProc,
    EndFunction,
    EndIf,
    EndInterface,
    EndMacro,
    EndMethod,
    EndNamespace,
    EndProperty,
    EndSelect,
    EndSub,
    EndTry,
    EndType,
    EndUnion,
    EndWhile,
    EndWith,
    Enum,
    Exit,
    Export,
    FastProc,
    Finally,
    For,
    ForEach,
    Function,
    Get,
    Global,
    GoSub,
    GoTo,
    If,
    IfDef,
    IfNDef,
    Include,
    Inherit,
    Inline,
    Instance,
    Interface,
    Iterate,
    Local,
    Loop,
    Macro,
    MacroTemp,
    Method,
    Namespace,
    Next,
    On,
    Optional,
    Override,
    Private,
    Property,
    Public,
    ReDim,
    Register,
    Rem,
    Resume,
    Select,
    Set,
    Static,
    Sub,
    Then,
    Thread,
    Threaded,
    ThreadSafe,
    To,
    Try,
    Type,
    Union,
    Until,
    Wend,
    While,
    With,
    Count,
};

struct WordInfo {
    WordClass kind = WordClass::None;
    BasicWord word = BasicWord::None;
};
// What a word is in a dialect, without regard to case. `name` is without a type suffix. A word that is both a keyword
// and the word of a metastatement (IF) has the class of the keyword.
WordInfo LookUpWord(std::string_view name, const Dialect& dialect);

// The words of a class in a dialect, in lower case and separated by blanks: the common ones, then the dialect's own.
std::string WordsOf(WordClass kind, const Dialect& dialect);
