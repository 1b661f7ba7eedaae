// The program's version. This file is the one place: the texts, the resource script and CMakeLists.txt take it from
// here. The manifest cannot; a test compares it. Macros, because the resource compiler reads this file too.
#pragma once

#define KVX_VERSION "0.2.0"
#define KVX_VERSION_NUMBERS 0, 2, 0, 0
