// Whoever asks for memory that there is none of ends the program with a word, and gets no null.

#include <OutOfMemory.h>
#include <QByteArray>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>

#include <sys/resource.h>

namespace {

constexpr int status = 3;
const char* const message = "tested: the system has no memory to give; the program ends at once";

const outofmemory::Watch watch("tested", status, nullptr);

// More than a process can address. The compiler may not know it.
volatile const std::size_t tooMuch = std::numeric_limits<std::size_t>::max() / 4;
void* volatile taken = nullptr;

// Leaves the process what it has got by now, and a little.
void limitMemory() {
    const rlimit most{64 << 10, 64 << 10};
    setrlimit(RLIMIT_AS, &most);
}

} // namespace

TEST(CheckedAllocation, EndsTheProgramWhereAFunctionOfTheCLibraryGivesNothing) {
    void* area = nullptr;
    EXPECT_EXIT(taken = std::malloc(tooMuch), testing::ExitedWithCode(status), message);
    EXPECT_EXIT(taken = std::calloc(tooMuch, 1), testing::ExitedWithCode(status), message);
    EXPECT_EXIT(taken = std::realloc(taken, tooMuch), testing::ExitedWithCode(status), message);
    EXPECT_EXIT(taken = std::aligned_alloc(64, tooMuch / 64 * 64), testing::ExitedWithCode(status), message);
    EXPECT_EXIT(std::_Exit(posix_memalign(&area, 64, tooMuch)), testing::ExitedWithCode(status), message);
}

TEST(CheckedAllocation, EndsTheProgramWhereNewGivesNothing) {
    EXPECT_EXIT(taken = ::operator new(tooMuch), testing::ExitedWithCode(status), message);
    EXPECT_EXIT(taken = ::operator new(tooMuch, std::nothrow), testing::ExitedWithCode(status), message);
}

// Where Qt looks whether it was given something, it throws; elsewhere it does not look.
TEST(CheckedAllocation, EndsTheProgramWhereALibraryGetsNothing) {
    EXPECT_EXIT(
        {
            limitMemory();
            const QByteArray text(100 << 20, 'x');
            std::_Exit(text.isEmpty() ? 1 : 0);
        },
        testing::ExitedWithCode(status), message);
}

TEST(CheckedAllocation, GivesWhatThereIs) {
    void* const few = std::malloc(10);
    std::memset(few, 7, 10);
    void* const more = std::realloc(few, 100'000);
    EXPECT_EQ(std::memcmp(more, "\7\7\7\7\7\7\7\7\7\7", 10), 0);
    std::free(more);

    const auto* const cleared = static_cast<const char*>(std::calloc(3, 5));
    EXPECT_EQ(std::memcmp(cleared, "\0\0\0\0\0\0\0\0\0\0\0\0\0\0", 15), 0);
    std::free(const_cast<char*>(cleared));

    void* const aligned = std::aligned_alloc(256, 512);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(aligned) % 256, 0U);
    std::free(aligned);
    void* area = nullptr;
    EXPECT_EQ(posix_memalign(&area, 256, 512), 0);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(area) % 256, 0U);
    std::free(area);
}

// No bytes may be null, and a mistake in the question is no want of memory.
TEST(CheckedAllocation, LeavesOtherAnswersAsTheyAre) {
    std::free(std::malloc(0));
    std::free(std::calloc(0, tooMuch));
    EXPECT_EQ(std::realloc(std::malloc(10), 0), nullptr);
    void* area = nullptr;
    EXPECT_EQ(posix_memalign(&area, 3, 10), EINVAL);
}
