// The words of the five BASIC dialects. Pure.
#include "language/basic_words.h"

#include "base/words.h"
#include "settings/compiler_id.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

namespace {

constexpr std::uint8_t DialectBit(std::uint32_t compilerId) { return static_cast<std::uint8_t>(1u << compilerId); }
constexpr std::uint8_t kEvery = (1u << kCompilerCount) - 1;
constexpr std::uint8_t kBits32 = DialectBit(kCompilerKvxa32) | DialectBit(kCompilerKeldorBasic);
constexpr std::uint8_t kBits64 = kEvery & ~kBits32;

// By id. KVXB64 and KVXC64 also take C sources, and their BASIC has comments over several lines.
constexpr Dialect kDialects[] = {
    {DialectBit(kCompilerKvxa64), false}, {DialectBit(kCompilerKvxb64), true},
    {DialectBit(kCompilerKvxa32), false}, {DialectBit(kCompilerKeldorBasic), false},
    {DialectBit(kCompilerKvxc64), true},
};
static_assert(std::size(kDialects) == kCompilerCount, "each compiler has a dialect");
constexpr Dialect kAnyDialect = {kEvery, false};

// Words in lower case, separated by blanks, with the dialects that know them.
struct WordRow {
    WordClass kind;
    std::uint8_t dialects;
    std::string_view words;
};
constexpr WordRow kWords[] = {
    {WordClass::Statement, kEvery,
     "alias any append as asm assert beep binary bycopy byref byval call callback case catch chdir class "
     "close cls color const continue data declare decr def default defbyt defcur defdbl defdwd defext defint "
     "deflng defqud defsng defstr defwrd delay dim do else elseif end endasm endclass endenum endfastproc "
     "endfunction endif endinterface endmacro endmethod endproperty endselect endsub endtry endtype endunion "
     "endwhile endwith enum erase error event exit export fastproc finally for function get global gosub goto "
     "if implements import in incr inherit inline input instance interface is iterate kill let lib line local "
     "locate loop lprint macro macrotemp method mkdir my name new next nothing object off on open opt option "
     "optional output override persist preserve print private property public put random randomize read redim "
     "register rem resume return rmdir seek select set shared shell sleep static step stop sub swap then "
     "thread threaded threadsafe to try type union until wend while with write"},
    {WordClass::Type, kEvery,
     "asciiz asciz bit bool boolean byt byte cur currency currencyx cux cwstr decimal double dwd dword ext "
     "extended field float guid int int16 int32 int64 int8 integer lng long longint pointer ptr quad qud "
     "single sng string stringz uint uint16 uint32 uint64 uint8 variant void vrnt word wrd wstring wstringz "
     "zstr"},
    {WordClass::Operator, kEvery, "and andalso eqv imp isfalse istrue mod not or orelse xor"},
    {WordClass::Function, kEvery,
     "abs acos array asc asin atn bin build cdbl ceil chr cint clng codeptr command cos cqud csng curdir "
     "cvbyt cvcux cvd cvdwd cvl cvq cvs cvwrd date dir environ eof erl err exp extract fileattr fix format "
     "frac freefile getattr hex hiword iif inkey instat instr ismissing isnothing isobject join lbound lcase "
     "left len lo lof log log10 log2 loword lset ltrim makdwd makint maklng makwrd max mcase mid min mkd mki "
     "mkl mks objptr oct parse parsecount pathname pathscan peek poke procname remain remove repeat replace "
     "retain right rnd round rset rtrim sgn sin sizeof space spc sqr str strdelete strinsert strptr "
     "strreverse switch tab tally tan time timer trim ubound ucase val varptr verify"},
    {WordClass::Entry, kEvery, "pbmain winmain"},
    // The dialects' own.
    {WordClass::Entry, kBits32, "libmain"},
    {WordClass::Statement, kBits64, "endnamespace foreach namespace"},
    {WordClass::Statement, DialectBit(kCompilerKvxa64), "unlock"},
    {WordClass::Statement, DialectBit(kCompilerKvxb64), "defer"},
    {WordClass::Statement, DialectBit(kCompilerKvxa32), "prefix"},
    {WordClass::Statement, DialectBit(kCompilerKvxc64), "lambda"},
    // Last, because the words above keep their class.
    {WordClass::Preprocessor, kEvery,
     "alias align bloat break com compile compiler console debug define dim else elseif endif error export if "
     "ifdef ifndef include link message messages once optimize option pragma register resource stack tools "
     "undef unique utility warning"},
};

struct IdRow {
    std::string_view word;
    BasicWord id;
};
constexpr IdRow kIds[] = {
    {"as", BasicWord::As},
    {"asm", BasicWord::Asm},
    {"bycopy", BasicWord::ByCopy},
    {"byref", BasicWord::ByRef},
    {"byval", BasicWord::ByVal},
    {"call", BasicWord::Call},
    {"callback", BasicWord::Callback},
    {"case", BasicWord::Case},
    {"catch", BasicWord::Catch},
    {"class", BasicWord::Class},
    {"const", BasicWord::Const},
    {"data", BasicWord::Data},
    {"declare", BasicWord::Declare},
    {"dim", BasicWord::Dim},
    {"do", BasicWord::Do},
    {"else", BasicWord::Else},
    {"elseif", BasicWord::ElseIf},
    {"end", BasicWord::End},
    {"endasm", BasicWord::EndAsm},
    {"endclass", BasicWord::EndClass},
    {"endenum", BasicWord::EndEnum},
    {"endfastproc", BasicWord::EndFastProc},
    {"endfunction", BasicWord::EndFunction},
    {"endif", BasicWord::EndIf},
    {"endinterface", BasicWord::EndInterface},
    {"endmacro", BasicWord::EndMacro},
    {"endmethod", BasicWord::EndMethod},
    {"endnamespace", BasicWord::EndNamespace},
    {"endproperty", BasicWord::EndProperty},
    {"endselect", BasicWord::EndSelect},
    {"endsub", BasicWord::EndSub},
    {"endtry", BasicWord::EndTry},
    {"endtype", BasicWord::EndType},
    {"endunion", BasicWord::EndUnion},
    {"endwhile", BasicWord::EndWhile},
    {"endwith", BasicWord::EndWith},
    {"enum", BasicWord::Enum},
    {"exit", BasicWord::Exit},
    {"export", BasicWord::Export},
    {"fastproc", BasicWord::FastProc},
    {"finally", BasicWord::Finally},
    {"for", BasicWord::For},
    {"foreach", BasicWord::ForEach},
    {"function", BasicWord::Function},
    {"get", BasicWord::Get},
    {"global", BasicWord::Global},
    {"gosub", BasicWord::GoSub},
    {"goto", BasicWord::GoTo},
    {"if", BasicWord::If},
    {"ifdef", BasicWord::IfDef},
    {"ifndef", BasicWord::IfNDef},
    {"include", BasicWord::Include},
    {"inherit", BasicWord::Inherit},
    {"inline", BasicWord::Inline},
    {"instance", BasicWord::Instance},
    {"interface", BasicWord::Interface},
    {"iterate", BasicWord::Iterate},
    {"local", BasicWord::Local},
    {"loop", BasicWord::Loop},
    {"macro", BasicWord::Macro},
    {"macrotemp", BasicWord::MacroTemp},
    {"method", BasicWord::Method},
    {"namespace", BasicWord::Namespace},
    {"next", BasicWord::Next},
    {"on", BasicWord::On},
    {"optional", BasicWord::Optional},
    {"override", BasicWord::Override},
    {"private", BasicWord::Private},
    {"property", BasicWord::Property},
    {"public", BasicWord::Public},
    {"redim", BasicWord::ReDim},
    {"register", BasicWord::Register},
    {"rem", BasicWord::Rem},
    {"resume", BasicWord::Resume},
    {"select", BasicWord::Select},
    {"set", BasicWord::Set},
    {"static", BasicWord::Static},
    {"sub", BasicWord::Sub},
    {"then", BasicWord::Then},
    {"thread", BasicWord::Thread},
    {"threaded", BasicWord::Threaded},
    {"threadsafe", BasicWord::ThreadSafe},
    {"to", BasicWord::To},
    {"try", BasicWord::Try},
    {"type", BasicWord::Type},
    {"union", BasicWord::Union},
    {"until", BasicWord::Until},
    {"wend", BasicWord::Wend},
    {"while", BasicWord::While},
    {"with", BasicWord::With},
};
static_assert(std::size(kIds) == static_cast<std::size_t>(BasicWord::Count) - 1, "each id has a word");

// An open hash table of all words. It is made at the first look-up.
struct Entry {
    std::string_view word;  // empty: a free place
    WordClass kind = WordClass::None;
    std::uint8_t dialects = 0;
    BasicWord id = BasicWord::None;
};
constexpr std::size_t kPlaces = 2048;
constexpr std::size_t kLongestWord = 16;
using WordTable = std::array<Entry, kPlaces>;

constexpr char LowerLetter(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

std::size_t PlaceOf(std::string_view word) {
    std::uint32_t hash = static_cast<std::uint32_t>(word.size());
    for (const char c : word) hash = (hash ^ static_cast<std::uint8_t>(LowerLetter(c))) * 0x9E3779B1u;
    return hash >> 21;  // the upper 11 bits
}

bool IsSameWord(std::string_view lower, std::string_view word) {
    if (lower.size() != word.size()) return false;
    for (std::size_t i = 0; i < lower.size(); ++i)
        if (LowerLetter(word[i]) != lower[i]) return false;
    return true;
}

// The place of the word, or the free one where it belongs.
std::size_t FindPlace(const WordTable& table, std::string_view word) {
    std::size_t place = PlaceOf(word);
    while (!table[place].word.empty() && !IsSameWord(table[place].word, word)) place = (place + 1) % kPlaces;
    return place;
}

WordTable MakeTable() {
    WordTable table;
    for (const WordRow& row : kWords)
        ForEachWord(row.words, [&](std::string_view word) {
            Entry& entry = table[FindPlace(table, word)];
            if (entry.word.empty()) entry = {word, row.kind, row.dialects, BasicWord::None};
        });
    for (const IdRow& row : kIds) {
        Entry& entry = table[FindPlace(table, row.word)];
        if (!entry.word.empty()) entry.id = row.id;
    }
    return table;
}

}  // namespace

const Dialect& DialectOf(std::uint32_t compilerId) {
    return kDialects[compilerId < kCompilerCount ? compilerId : kDefaultCompiler];
}

const Dialect& AnyDialect() { return kAnyDialect; }

WordInfo LookUpWord(std::string_view name, const Dialect& dialect) {
    static const WordTable table = MakeTable();
    if (name.size() < 2 || name.size() > kLongestWord) return {};
    const Entry& entry = table[FindPlace(table, name)];
    return (entry.dialects & dialect.words) != 0 ? WordInfo{entry.kind, entry.id} : WordInfo{};
}

std::string WordsOf(WordClass kind, const Dialect& dialect) {
    std::string words;
    for (const WordRow& row : kWords)
        if (row.kind == kind && (row.dialects & dialect.words) != 0)
            words.append(words.empty() ? "" : " ").append(row.words);
    return words;
}
