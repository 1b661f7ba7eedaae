// A queue between a worker and its owner, who empties it at its own pace; no window is needed. The two share it, and
// the last one to let go frees what is left, so either side may end first. Any thread. Pure.
#pragma once

#include <deque>
#include <mutex>
#include <utility>

template <typename Item>
class WorkerQueue {
public:
    // For the worker. Returns false, and drops the item, when the owner has closed the queue.
    bool Put(Item item) {
        const std::lock_guard lock(mutex_);
        if (closed_) return false;
        items_.push_back(std::move(item));
        return true;
    }
    // For the worker: nothing more will come.
    void Finish() {
        const std::lock_guard lock(mutex_);
        finished_ = true;
    }
    // For the owner: replaces `items` by what came since the last call, in order. Returns false when nothing came and
    // nothing more will.
    bool TakeAll(std::deque<Item>* items) {
        items->clear();
        const std::lock_guard lock(mutex_);
        items->swap(items_);
        return !items->empty() || !finished_;
    }
    // For the owner: drops what is there and what still comes.
    void Close() {
        std::deque<Item> dropped;  // freed after the lock is released
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
