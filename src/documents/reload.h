// Reading the file of a document again, without a question. FileReload (documents/file_commands.h) asks first. UI thread
// only.
#pragma once

#include "base/events.h"

#include <cstdint>

enum class ReloadFailure : std::uint8_t { Box, Status };  // how a failure is told

// Returns 1 when the document shows its file, else 0.
int ReloadFromDisk(DocumentId document, ReloadFailure failure);
