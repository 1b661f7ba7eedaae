// What an open file tells about itself. Any thread.
#pragma once

#include "files/disk_file.h"

#include <windows.h>

FileIdentity FileIdentityOfHandle(HANDLE file);
// Without the hash. Unknown for what is not a file on a disk.
FileState FileStateOfHandle(HANDLE file);
