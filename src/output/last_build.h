// Where the last build took place: what its diagnostics and its program refer to. UI thread only.
#pragma once

#include <string>

// Empty texts before the first build.
struct BuildPlaces {
    std::wstring source;
    std::wstring output;
    std::wstring staged;  // the copy that the compiler saw, empty when it saw the source itself
    std::wstring workingDirectory;
};
const BuildPlaces& BuildLastPlaces();
void BuildSetLastPlaces(BuildPlaces places);
