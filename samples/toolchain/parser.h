// Makes the tree of the tokens. A statement that is not understood is reported and skipped to its end, so that one run
// shows many errors. Names of variables and procedures are left to the checker. Constants are computed here, because
// array bounds need them.
#pragma once

#include "ast.h"
#include "lexer.h"

#include <optional>

namespace standin {

inline constexpr int kMaxBlockDepth = 64;
inline constexpr int kMaxExpressionDepth = 400;
inline constexpr int kMaxIncludeDepth = 16;
inline constexpr int kMaxIncludedFiles = 256;
inline constexpr int kMaxParameters = 32;
inline constexpr int64_t kMaxElements = 8 << 20;

struct Parser {
    Sources& sources;
    const std::vector<std::string>& includeDirs;
    Program& program;
    std::vector<Token> tokens;
    size_t at = 0;
    Procedure* current = nullptr;          // the procedure whose body is being read
    std::vector<std::string> openFiles{};  // canonical names, to detect a file that includes itself
    int includedFiles = 0;
    std::vector<std::string> openBlocks{};  // closing words that enclosing blocks wait for
    int blockDepth = 0;
    int expressionDepth = 0;
    bool unclosed = false;    // the last block ended without its closing line
    bool singleLine = false;  // inside a single-line IF
};

// Parses sources.files[0] and the files that it includes.
void ParseProgram(Parser& parser);

// parse_statement.cpp
void ParseBody(Parser& parser, std::vector<Stmt>& body, std::string_view closing);
void ParseVariables(Parser& parser, bool keepsValue);
void ParseConstant(Parser& parser);

// parse_expression.cpp
ExprPtr ParseExpression(Parser& parser);  // null after a reported error
std::vector<ExprPtr> ParseArguments(Parser& parser, bool& good);
std::optional<Constant> EvaluateConstant(const Program& program, const Expr& expr);

// Helpers of the parser's files.
const Token& Current(const Parser& parser);
const Token& Ahead(const Parser& parser, size_t count = 1);
bool IsWord(const Token& token, std::string_view word);
bool IsMark(const Token& token, std::string_view mark);
bool TakeWord(Parser& parser, std::string_view word);
bool TakeMark(Parser& parser, std::string_view mark);
bool AtStatementEnd(const Parser& parser);
void SkipLine(Parser& parser);
bool ExpectWord(Parser& parser, std::string_view word);  // false, after a report, when absent
bool ExpectMark(Parser& parser, std::string_view mark);
std::optional<Token> ExpectName(Parser& parser, std::string_view what);
std::optional<Type> ExpectType(Parser& parser);  // after AS
bool IsReserved(std::string_view upper);
std::string Describe(const Token& token);
void Fail(Parser& parser, Code code, std::string message, std::string fix = {});  // at the current token

}  // namespace standin
