// Compares what a file was with what it is. Pure.
#include "files/disk_file.h"

#include <bit>
#include <cstring>

namespace {

constexpr std::size_t kBlock = 32;  // bytes that all lanes take together
constexpr std::uint64_t kStir = 0x9E3779B97F4A7C15, kFold = 0xD6E8FEB86659FD93;

// Every bit of the word has a say in every bit of the result.
std::uint64_t Stirred(std::uint64_t word) {
    word = (word ^ (word >> 32U)) * kFold;
    word = (word ^ (word >> 29U)) * kStir;
    return word ^ (word >> 32U);
}

}  // namespace

void ContentHasher::AddWord(const char* word) {
    for (std::uint64_t& lane : lanes_) {
        std::uint64_t taken = 0;
        std::memcpy(&taken, word, sizeof taken);
        lane = std::rotl((lane ^ taken) * kStir, 29) + kFold;
        word += sizeof taken;
    }
}

void ContentHasher::Add(std::string_view bytes) {
    const std::size_t held = length_ % kBlock;
    length_ += bytes.size();
    if (held > 0) {
        const std::size_t taken = bytes.copy(rest_ + held, kBlock - held);
        bytes.remove_prefix(taken);
        if (held + taken < kBlock) return;
        AddWord(rest_);
    }
    for (; bytes.size() >= kBlock; bytes.remove_prefix(kBlock)) AddWord(bytes.data());
    bytes.copy(rest_, bytes.size());
}

ContentHash ContentHasher::Value() const {
    ContentHasher last = *this;
    std::memset(last.rest_ + length_ % kBlock, 0, kBlock - length_ % kBlock);
    last.AddWord(last.rest_);
    ContentHash hash{length_, ~length_};
    for (const std::uint64_t lane : last.lanes_) {
        hash.a = Stirred(hash.a + Stirred(lane));
        hash.b = Stirred(hash.b ^ (lane * kFold));
    }
    if (!hash.IsKnown()) hash.a = 1;
    return hash;
}

ContentHash ContentHashOf(std::string_view bytes) {
    ContentHasher hasher;
    hasher.Add(bytes);
    return hasher.Value();
}

bool FileLooksSame(const FileState& known, const FileState& now) {
    if (known.presence == FilePresence::Missing && now.presence == FilePresence::Missing) return true;
    FileState compared = now;
    compared.hash = known.hash;
    return compared == known;
}

bool FileNeedsHash(const FileState& known, const FileState& now) {
    return known.presence != FilePresence::Unknown && now.presence == FilePresence::There && known.size == now.size &&
           known.hash.IsKnown() &&
           (known.presence == FilePresence::Missing || known.written != now.written || known.identity != now.identity);
}

FileChange FileChangeOf(const FileState& known, const FileState& now) {
    if (known.presence == FilePresence::Unknown || now.presence == FilePresence::Unknown) return FileChange::None;
    if (now.presence == FilePresence::Missing)
        return known.presence == FilePresence::Missing ? FileChange::None : FileChange::Gone;
    if (FileLooksSame(known, now)) return FileChange::None;
    const bool sameBytes =
        known.size == now.size &&
        (FileNeedsHash(known, now)
             ? known.hash == now.hash
             : known.presence == FilePresence::There && known.written == now.written && known.identity == now.identity);
    if (!sameBytes)
        return known.presence == FilePresence::There && known.identity != now.identity ? FileChange::Replaced
                                                                                       : FileChange::Changed;
    return now.readOnly && !known.readOnly ? FileChange::ReadOnly : FileChange::Touched;
}
