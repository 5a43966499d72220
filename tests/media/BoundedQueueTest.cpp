// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/BoundedQueue.h"
#include "media/NamedThread.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <stdexcept>
#include <string>

namespace lumetwin::media {
namespace {

TEST(BoundedQueue, anErrorComesBehindWhatWaitsAndOnce) {
    BoundedQueue<int> queue(3);
    EXPECT_TRUE(queue.push(1));
    EXPECT_TRUE(queue.push(2));
    queue.close(std::make_exception_ptr(std::runtime_error("broken")));
    EXPECT_FALSE(queue.push(3));
    EXPECT_EQ(queue.pop(), 1);
    EXPECT_EQ(queue.pop(), 2);
    EXPECT_THROW(queue.pop(), std::runtime_error);
    EXPECT_EQ(queue.pop(), std::nullopt);
}

TEST(BoundedQueue, whoDiscardsHearsOfNoError) {
    BoundedQueue<int> queue(1);
    queue.push(1);
    queue.close(std::make_exception_ptr(std::runtime_error("broken")));
    queue.discard();
    EXPECT_EQ(queue.pop(), std::nullopt);
}

TEST(BoundedQueue, aFullOneLetsItsGiverWait) {
    BoundedQueue<int> queue(1);
    int given = 0;
    NamedThread giver("giver", [&] {
        while (queue.push(given))
            ++given;
    });
    for (int item = 0; item < 100; ++item)
        EXPECT_EQ(queue.pop(), item);
    queue.discard();
    giver.wait();
    EXPECT_GE(given, 100);
    EXPECT_LE(given, 102); // what was taken, what waited, and nothing more
}

TEST(NamedThread, hasItsNameAndPassesOnWhatItsWorkThrows) {
    std::array<char, 16> name{};
    NamedThread thread("spatial.video", [&] {
        pthread_getname_np(pthread_self(), name.data(), name.size());
        throw std::runtime_error("broken");
    });
    EXPECT_TRUE(thread.runs());
    EXPECT_THROW(thread.wait(), std::runtime_error);
    EXPECT_FALSE(thread.runs());
    EXPECT_EQ(std::string(name.data()), "spatial.video");
}

TEST(NamedThread, aReleasedOneLetsItsWorkGoWhenItEnds) {
    const auto held = std::make_shared<int>(0);
    NamedThread thread("work", [held] {});
    thread.release().join();
    EXPECT_EQ(held.use_count(), 1);
}

} // namespace
} // namespace lumetwin::media
