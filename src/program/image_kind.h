// What kind of program a file holds. Any thread.
#pragma once

struct ImageKind {
    bool x64 = false;
    bool console = false;
};
// Of a file that cannot be read, or is no program: neither.
ImageKind ImageKindOf(const wchar_t* executable);
