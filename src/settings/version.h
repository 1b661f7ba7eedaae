// The program's version. The texts, the resource script and CMakeLists.txt take it from here. The manifest cannot, so a
// test compares it. Macros, because the resource compiler reads this file, too.
#pragma once

#define KVX_VERSION "0.2.0"
#define KVX_VERSION_NUMBERS 0, 2, 0, 0
