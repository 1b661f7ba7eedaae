// The queue between a worker and its owner.
#include "base/worker_queue.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>

namespace {

TEST(WorkerQueue, HandsOverInOrderAndSaysWhenThatWasAll) {
    WorkerQueue<int> queue;
    std::thread worker([&queue] {
        for (int i = 0; i < 10000; ++i) queue.Put(i);
        queue.Finish();
    });
    std::deque<int> items;
    int next = 0;
    while (queue.TakeAll(&items))
        for (const int item : items) ASSERT_EQ(item, next++);
    worker.join();
    EXPECT_EQ(next, 10000);
}

TEST(WorkerQueue, NothingIsKeptForAnOwnerWhoHasGone) {
    const auto counted = std::make_shared<int>(0);
    {
        WorkerQueue<std::shared_ptr<int>> queue;
        EXPECT_TRUE(queue.Put(counted));
        queue.Close();
        EXPECT_EQ(counted.use_count(), 1) << "what was there is freed";
        EXPECT_FALSE(queue.Put(counted)) << "what comes late is freed";
        EXPECT_EQ(counted.use_count(), 1);
        std::deque<std::shared_ptr<int>> items;
        EXPECT_FALSE(queue.TakeAll(&items));
        WorkerQueue<std::shared_ptr<int>> forgotten;
        forgotten.Put(counted);
    }
    EXPECT_EQ(counted.use_count(), 1) << "the queue takes what is in it with it";
}

}  // namespace
