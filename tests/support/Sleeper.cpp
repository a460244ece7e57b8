#include <chrono>
#include <cstdlib>
#include <thread>

// A program that does nothing for so many seconds: it neither reads nor writes.
int main(int count, char** values) {
    std::this_thread::sleep_for(std::chrono::seconds(count > 1 ? std::atoi(values[1]) : 0));
}
