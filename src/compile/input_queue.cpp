#include "compile/input_queue.h"

#include <utility>

namespace {

constexpr std::size_t kMostWaiting = 1024 * 1024;  // bytes
constexpr std::uint64_t kPatienceMs = 2000;

bool WriteIsOver(InputQueue& queue, const InputPipe& pipe) {
    if (!queue.pending) return true;
    std::size_t count = 0;
    switch (pipe.result(&count)) {
        case InputWrite::Pending: return false;
        case InputWrite::Done: queue.going.erase(0, count); break;
        case InputWrite::Failed:
            queue.going.clear();
            queue.waiting.clear();
            break;
    }
    queue.pending = false;
    return true;
}

void StartWrite(InputQueue& queue, const InputPipe& pipe) {
    if (queue.going.empty()) queue.going = std::exchange(queue.waiting, {});
    queue.began = pipe.clock();
    queue.pending = pipe.write(queue.going);
    if (!queue.pending) queue.going.clear();
}

}  // namespace

bool InputAdd(InputQueue& queue, std::string_view bytes) {
    if (queue.ends || queue.waiting.size() + bytes.size() > kMostWaiting) return false;
    queue.waiting += bytes;
    return true;
}

void InputPump(InputQueue& queue, const InputPipe& pipe) {
    while (WriteIsOver(queue, pipe)) {
        if (queue.going.empty() && queue.waiting.empty()) {
            if (queue.ends) pipe.close();
            return;
        }
        StartWrite(queue, pipe);
    }
}

bool InputIsDoubtful(InputQueue& queue, std::uint64_t now) {
    if (!queue.pending || queue.doubted || now - queue.began < kPatienceMs) return false;
    queue.doubted = true;
    return true;
}
