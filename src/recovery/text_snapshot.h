// A copy of a text that is edited while the copy is taken, piece by piece: between two pieces the window answers, and
// what the user types into the part that is copied already is done to the copy too. Pure.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

class TextSnapshot {
public:
    // Bytes copied so far. The next piece begins there.
    std::size_t Copied() const { return copied_; }
    // Adds the next piece: bytes [Copied(), Copied() + piece.size()) of the text as it is now.
    void Take(std::string piece);
    // The text was edited at that byte. What is behind the copied part does not matter yet.
    void Inserted(std::size_t position, std::string_view text);
    void Removed(std::size_t position, std::size_t length);
    // Gives the pieces away; the snapshot is empty afterwards.
    std::vector<std::string> Release();

private:
    std::vector<std::string> pieces_;
    std::size_t copied_ = 0;
};
