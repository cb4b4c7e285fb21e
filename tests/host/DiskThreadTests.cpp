#include <future>
#include <vector>

#include <gtest/gtest.h>

#include "host/DiskThread.hpp"

namespace zelto::host {
namespace {

TEST(DiskThread, DoesAllWorkInOrderBeforeItIsGone) {
    std::vector<int> done;
    std::thread::id worker;
    {
        DiskThread thread;
        std::promise<void> gate;
        thread.run([&, open = gate.get_future().share()] {
            open.wait();
            worker = std::this_thread::get_id();
        });
        for (int i = 0; i < 100; ++i) thread.run([&done, i] { done.push_back(i); });
        EXPECT_TRUE(done.empty());
        gate.set_value();
    }
    ASSERT_EQ(done.size(), 100U);
    for (int i = 0; i < 100; ++i) EXPECT_EQ(done[static_cast<std::size_t>(i)], i);
    EXPECT_NE(worker, std::this_thread::get_id());
}

}  // namespace
}  // namespace zelto::host
