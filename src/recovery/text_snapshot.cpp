#include "recovery/text_snapshot.h"

#include <algorithm>
#include <utility>

void TextSnapshot::Take(std::string piece) {
    copied_ += piece.size();
    pieces_.push_back(std::move(piece));
}

void TextSnapshot::Inserted(std::size_t position, std::string_view text) {
    if (position >= copied_) return;  // comes with a later piece
    copied_ += text.size();
    for (std::string& piece : pieces_) {
        if (position < piece.size()) {
            piece.insert(position, text);
            return;
        }
        position -= piece.size();
    }
}

void TextSnapshot::Removed(std::size_t position, std::size_t length) {
    if (position >= copied_) return;
    length = std::min(length, copied_ - position);
    copied_ -= length;
    for (std::string& piece : pieces_) {
        if (position >= piece.size()) {
            position -= piece.size();
            continue;
        }
        const std::size_t here = std::min(length, piece.size() - position);
        piece.erase(position, here);
        length -= here;
        if (length == 0) return;
        position = 0;
    }
}

std::vector<std::string> TextSnapshot::Release() {
    copied_ = 0;
    return std::exchange(pieces_, {});
}
