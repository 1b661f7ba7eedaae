// Makes text of unknown origin safe to show. Pure.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Returns valid UTF-8: control characters and bytes that are not UTF-8 are written as "\x1B". Tabs are expanded to
// stops `tab` columns apart; with 0 they are control characters too.
std::string VisibleText(std::string_view text, std::size_t tab = 0);
