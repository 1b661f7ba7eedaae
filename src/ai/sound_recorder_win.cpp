#include "ai/sound_recorder.h"

#include "ai/sound_input.h"
#include "ai/wav.h"

#include <algorithm>
#include <span>
#include <utility>

namespace {

constexpr DWORD kReadMs = 50;
constexpr std::size_t kMeterSamples = kSamplesPerSecond / 10;

struct RecordRequest {
    const SoundInput* input;
    std::shared_ptr<SoundFeed> feed;
};

void Deliver(SoundFeed& feed, const std::vector<std::int16_t>& fresh) {
    if (fresh.empty()) return;
    feed.level = SoundLevel(std::span(fresh).last(std::min(fresh.size(), kMeterSamples)));
    feed.heardTick = GetTickCount64();
    const std::lock_guard guard(feed.lock);
    const std::size_t room = kMostSamples - std::min(kMostSamples, feed.samples.size());
    feed.samples.insert(feed.samples.end(), fresh.begin(),
                        fresh.begin() + static_cast<std::ptrdiff_t>(std::min(room, fresh.size())));
    if (fresh.size() >= room) feed.full = true;
}

void RecordSound(RecordRequest& request, const WorkerCancel& cancel) {
    SoundFeed& feed = *request.feed;
    std::wstring problem;
    void* input = request.input->start(&problem);
    if (input == nullptr) {
        const std::lock_guard guard(feed.lock);
        feed.problem = std::move(problem);
        feed.state = RecorderState::NoInput;
        return;
    }
    feed.heardTick = GetTickCount64();
    feed.state = RecorderState::Records;
    std::vector<std::int16_t> fresh;
    bool present = true;
    while (present && WaitForSingleObject(cancel.Event(), kReadMs) == WAIT_TIMEOUT) {
        fresh.clear();
        present = request.input->read(input, &fresh);
        Deliver(feed, fresh);
    }
    if (!present) feed.state = RecorderState::Lost;  // told before the driver is called, because that may hang then
    fresh.clear();
    request.input->stop(input, &fresh);
    Deliver(feed, fresh);
    if (present) feed.state = RecorderState::Ended;
}

}  // namespace

Recorder RecorderStart() {
    auto feed = std::make_shared<SoundFeed>();
    Worker worker = WorkerStart<RecordSound>(RecordRequest{.input = g_soundInput, .feed = feed});
    return {.feed = std::move(feed), .worker = std::move(worker)};
}

std::vector<std::int16_t> RecorderTake(SoundFeed& feed) {
    const std::lock_guard guard(feed.lock);
    return std::exchange(feed.samples, {});
}
