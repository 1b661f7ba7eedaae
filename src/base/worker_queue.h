// A queue between a worker and the owner that empties it when it has time; no window is needed. What is still in it goes
// with the last of the two that knows it, so nothing is lost when either side ends first. Any thread. Pure.
#pragma once

#include <deque>
#include <mutex>
#include <utility>

template <typename Item>
class WorkerQueue {
public:
    // The worker's side. False: the owner wants no more, and the item is dropped.
    bool Put(Item item) {
        const std::lock_guard lock(mutex_);
        if (closed_) return false;
        items_.push_back(std::move(item));
        return true;
    }
    // The worker's last call: nothing more will come.
    void Finish() {
        const std::lock_guard lock(mutex_);
        finished_ = true;
    }
    // The owner's side: what came since the last call, in its order. False: nothing did, and nothing more will.
    bool TakeAll(std::deque<Item>* items) {
        items->clear();
        const std::lock_guard lock(mutex_);
        items->swap(items_);
        return !items->empty() || !finished_;
    }
    // The owner wants no more: what is there and what comes is dropped.
    void Close() {
        std::deque<Item> dropped;  // freed without the lock
        const std::lock_guard lock(mutex_);
        closed_ = finished_ = true;
        items_.swap(dropped);
    }

private:
    std::mutex mutex_;
    std::deque<Item> items_;
    bool finished_ = false;
    bool closed_ = false;
};
