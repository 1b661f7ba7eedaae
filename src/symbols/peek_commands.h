// The commands of the peek. UI thread only.
#pragma once

void PeekDefinition();
void PeekCallers();
