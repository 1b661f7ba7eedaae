// Tells whether the code of an executable can be shown. Pure.
#pragma once

#include "program/pe_image.h"

#include <string>

// Returns why the code of this file cannot be shown, as a sentence for the user; empty when it can.
std::string PeProblem(const PeImage& image);
