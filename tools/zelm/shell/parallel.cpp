#include "parallel.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace zelm::tool {

void onAllCores(std::size_t count, const std::function<void(std::size_t)>& work) {
    std::atomic<std::size_t> next{0};
    std::mutex mutex;
    std::exception_ptr failure;
    const auto workOn = [&] {
        for (std::size_t i = next++; i < count; i = next++) {
            try {
                work(i);
            } catch (...) {
                next = count;
                const std::scoped_lock lock(mutex);
                failure = failure ? failure : std::current_exception();
            }
        }
    };
    const std::size_t wanted = std::min<std::size_t>(count, std::max(1U, std::thread::hardware_concurrency()));
    std::vector<std::thread> others;
    try {
        while (others.size() + 1 < wanted) {
            others.emplace_back(workOn);
        }
    } catch (const std::system_error&) {  // the machine has no more threads: those that there are do it
    }
    workOn();
    for (std::thread& other : others) {
        other.join();
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
}

}  // namespace zelm::tool
