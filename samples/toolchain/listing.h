// The assembly listing: source lines as comments, then address, bytes and instruction text.
#pragma once

#include "codegen.h"

namespace standin {

std::string BuildListing(const Generator& g, const std::string& sourceName, uint64_t textAddress);

}  // namespace standin
