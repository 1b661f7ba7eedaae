// Tells text whose line breaks are not all of one kind. Pure; any thread.
#pragma once

#include <cstdint>
#include <string_view>

// Looks at a text that comes in pieces. Fast, because it is done for every file that is read.
class BreakKinds {
public:
    void Look(std::string_view piece);
    bool Mixed() const;

private:
    char last_ = 0;          // of the pieces so far
    std::uint8_t crLf_ = 0;  // 1: there is one
    std::uint8_t lf_ = 0;
    std::uint8_t cr_ = 0;  // a CR that ends the pieces so far is not counted yet
};
