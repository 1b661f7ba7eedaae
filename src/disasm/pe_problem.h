// Whether there is code to show in an executable. Pure.
#pragma once

#include "program/pe_image.h"

#include <string>

// Why the code of this file is not shown, as a sentence for the user; empty: it can be.
std::string PeProblem(const PeImage& image);
