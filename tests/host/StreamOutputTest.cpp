#include "services/console/StreamOutput.h"

#include "SmallSite.h"
#include "services/console/StreamWriter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iostream>
#include <sstream>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using namespace std::chrono_literals;

namespace {

constexpr std::chrono::seconds patience{60}; // only a failing test waits for it

// What stands on standard output; the three points of the small site behind it.
class StreamedValues : public testing::Test {
protected:
    StreamedValues() : before(std::cout.rdbuf(&written)) {}
    ~StreamedValues() override {
        EXPECT_TRUE(console.out.waitUntilIdle(patience));
        std::cout.rdbuf(before);
    }

    std::vector<std::string> lines() {
        EXPECT_TRUE(console.out.waitUntilIdle(patience));
        std::vector<std::string> result;
        std::istringstream text(written.str());
        for (std::string line; std::getline(text, line);)
            result.push_back(line);
        return result;
    }
    void read(unsigned number, double value) {
        store.publishPoints(4, 7, {PointUpdate{false, number, value, CMidTime(), PointQuality::Good}});
    }

    const host::Site site = smallSite();
    host::ValueStore store{site};
    std::stringbuf written;
    std::streambuf* const before;
    host::Console console;
};

} // namespace

TEST_F(StreamedValues, TellWhatIsNotReadForAWhileOnce) {
    host::StreamOutput output(console, store, host::makeLineText(), "", 0ms);
    read(0, 1);
    EXPECT_TRUE(output.update());
    EXPECT_THAT(lines(), ElementsAre(HasSubstr("RUN (O32) = 1  good"), HasSubstr("FLOW (R100)  never read"),
                                     HasSubstr("LEVEL (R101)  never read")));
    read(1, 2.5);
    EXPECT_TRUE(output.update());
    EXPECT_THAT(lines().back(), HasSubstr("FLOW (R100) = 2.5  good"));
    output.finish();
    EXPECT_EQ(lines().size(), 4U);
}

TEST_F(StreamedValues, TellAtTheEndWhatHasNotBeenReadByThen) {
    host::StreamOutput output(console, store, host::makeLineText(), "", 1h);
    EXPECT_TRUE(output.update());
    EXPECT_THAT(lines(), IsEmpty());
    read(0, 1);
    output.finish();
    EXPECT_THAT(lines(), ElementsAre(HasSubstr("RUN (O32) = 1  good"), HasSubstr("FLOW (R100)  never read"),
                                     HasSubstr("LEVEL (R101)  never read")));
}
