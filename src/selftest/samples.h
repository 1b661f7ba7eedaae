// The sources on which the self-test works. They are part of the program, because an installed one has no others. Pure.
#pragma once

#include <string>
#include <string_view>

// The bytes of a sample file; empty for an unknown name.
std::string SelfTestSample(std::string_view name);

// A line of the steps sample that a run of it passes.
inline constexpr int kBranchTaken = 8;
