// Text of unknown origin, fit to be shown. Pure.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// UTF-8 in, valid UTF-8 out: control characters and bytes that are no UTF-8 are written "\x1B". Tabs are expanded to
// stops `tab` columns apart; 0: they are control characters too.
std::string VisibleText(std::string_view text, std::size_t tab = 0);
