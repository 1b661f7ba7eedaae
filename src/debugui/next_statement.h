// Where the next statement may be set: in the procedure in which the program stands, and only while its frame stands.
// Pure.
#pragma once

#include <functional>
#include <string>

// What is asked for. Lines are from 1 and of one file, unless `otherFile` is true.
struct NextStatement {
    int from = 0;               // the line on which the program stands; 0: none
    int to = 0;                 // the line that is to be next
    bool otherFile = false;     // `to` is in another file than `from`
    bool hasCode = false;       // `to` has code
    bool standsThere = false;   // the program stands at the code of `to` already
    bool frameMissing = false;  // the frame of the procedure does not stand yet, or no longer
};
// Why the next statement cannot be set there, as a line for the output pane; empty: it can. `lineText` gives the text of
// a line of the file.
std::wstring NextStatementProblem(const NextStatement& wanted, const std::function<std::string(int line)>& lineText);
