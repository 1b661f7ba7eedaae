// The program as a syntax tree. The parser builds it. The checker resolves names and types and replaces SELECT CASE and
// FOR by simpler forms. The code generator only reads it.
#pragma once

#include "source.h"

#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace standin {

enum class Type : uint8_t { None, Long, Quad, Double };  // ordered from narrow to wide

constexpr std::string_view TypeName(Type type) {
    switch (type) {
        case Type::Long: return "LONG";
        case Type::Quad: return "QUAD";
        case Type::Double: return "DOUBLE";
        default: return "nothing";
    }
}
constexpr int SizeOf(Type type) { return type == Type::Long ? 4 : 8; }

enum class Storage : uint8_t {
    Frame,      // a slot below (local) or above (BYVAL parameter) the frame pointer
    Data,       // the data section: STATIC, and DIM outside procedures
    Reference,  // the frame slot holds the address: BYREF and array parameters
};

struct Symbol {
    std::string name;  // upper case; empty for temporaries of the compiler
    Type type = Type::Long;
    Storage storage = Storage::Frame;
    bool isArray = false;
    bool isParameter = false;
    bool used = false;
    int64_t count = 1;     // number of elements; 0 (unknown) for array parameters
    int32_t offset = 0;    // offset from the frame pointer or the start of the data; set by the layout
    std::string spelling;  // as the programmer wrote it
    Pos pos;
};

struct Constant {
    Type type = Type::Long;
    int64_t whole = 0;
    double real = 0;
    Pos pos;
};

struct Procedure;
struct Expr;
using ExprPtr = std::unique_ptr<Expr>;

enum class Op : uint8_t {
    Xor,
    Or,
    And,
    Eq,
    Ne,
    Lt,
    Gt,
    Le,
    Ge,
    Add,
    Sub,
    Mod,
    IntDiv,
    Mul,
    Div,
    Pow,
    Neg,
    Not,
    Abs,
    Int,
    Sqr
};
constexpr bool IsComparison(Op op) { return op >= Op::Eq && op <= Op::Ge; }

enum class ExprKind : uint8_t {
    Number,
    Name,      // parser only: a bare name
    Apply,     // parser only: name(arguments), a call or an array element
    Variable,  // symbol
    Element,   // symbol(args[0])
    Array,     // symbol(), a whole array as an argument
    Bound,     // the upper bound of symbol()
    Call,      // procedure(args)
    Unary,     // op args[0]
    Binary,    // args[0] op args[1]
    Convert,   // args[0] to type
};

struct Expr {
    ExprKind kind = ExprKind::Number;
    Op op = Op::Add;
    Type type = Type::Long;
    int depth = 1;  // depth of the tree; the parser limits it
    Pos pos;
    std::string name;  // upper case
    std::string spelling;
    int64_t whole = 0;
    double real = 0;
    Symbol* symbol = nullptr;
    Procedure* procedure = nullptr;
    std::vector<ExprPtr> args;
    std::vector<Symbol*> temporaries;  // Call: for each argument the place of a BYREF value, or null
};

enum class StmtKind : uint8_t {
    Assign,  // target = value; a null target is the FUNCTION result
    Call,    // value is the Call expression
    Print,
    Sleep,   // value in milliseconds
    If,      // branches, each with a condition but for a final ELSE
    Select,  // parser only: value, branches with cases
    For,     // target = value TO limit STEP step; the checker fills condition and increment
    Loop,    // DO, WHILE: condition tested first; postCondition after the body; either may be absent
    Exit,
};

enum class ExitKind : uint8_t { For, Do, Procedure };

struct Stmt;

struct CaseItem {
    enum class Kind : uint8_t { Value, Range, Is } kind = Kind::Value;
    Op op = Op::Eq;
    ExprPtr low, high;
};

struct Branch {
    Pos pos;
    ExprPtr condition;            // null: ELSE
    std::vector<CaseItem> cases;  // Select only
    std::vector<Stmt> body;
};

struct PrintItem {
    enum class Kind : uint8_t { Text, Value, NextZone, NewLine } kind;
    int text = -1;  // index into Program::strings
    ExprPtr value;
};

struct Stmt {
    StmtKind kind = StmtKind::Assign;
    Pos pos;
    Pos end{};  // position of a block's closing line
    ExprPtr target, value, limit, step;
    ExprPtr condition, postCondition, increment;
    std::vector<Branch> branches;
    std::vector<Stmt> body;
    std::vector<PrintItem> items;
    ExitKind exit = ExitKind::For;
    Symbol* limitSlot = nullptr;  // For: hidden copies of limit and step; Select: of the value
    Symbol* stepSlot = nullptr;
};

struct Procedure {
    std::string name;  // upper case
    std::string spelling;
    Type result = Type::None;  // None: SUB
    Pos pos, end;
    std::vector<Symbol*> parameters;
    std::deque<Symbol> symbols;  // parameters, locals, statics and temporaries; a deque keeps their addresses
    std::map<std::string, Symbol*> names;
    std::vector<Stmt> body;
    Symbol* resultSlot = nullptr;
    int label = -1;  // index into Encoder::labels; -1: none yet
};

struct Program {
    std::deque<Procedure> procedures;
    std::map<std::string, Procedure*> procedureNames;
    std::deque<Symbol> moduleSymbols;
    std::map<std::string, Symbol*> moduleNames;
    std::map<std::string, Constant> constants;
    std::vector<std::string> strings;
    Procedure* main = nullptr;  // PBMAIN
};

}  // namespace standin
