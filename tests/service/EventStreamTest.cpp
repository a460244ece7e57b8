#include "services/console/EventStream.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <thread>
#include <vector>

using host::EventStream;
using host::Severity;
using testing::ElementsAre;
using testing::Pair;

namespace {

class Events : public testing::Test {
protected:
    std::vector<std::pair<Severity, std::string>> told;
    EventStream stream{
        [this](Severity severity, const std::string& text) { told.emplace_back(severity, text); }};
    std::ostream out{&stream};
};

} // namespace

TEST_F(Events, AreLinesOfTheSeverityThatIsMarkedInFront) {
    out << "<3>the site lacks a line\n<4>tank: no answer\n<5>tank: answers again\nall lines run\n";
    EXPECT_THAT(told, ElementsAre(Pair(Severity::Error, "the site lacks a line"),
                                  Pair(Severity::Warning, "tank: no answer"),
                                  Pair(Severity::Note, "tank: answers again"),
                                  Pair(Severity::Note, "all lines run")));
}

TEST_F(Events, AreToldOnceTheirLineIsWhole) {
    out << "<3>sbus-host: "
        << "no such " << std::flush;
    EXPECT_TRUE(told.empty());
    out << "file" << '\n';
    EXPECT_THAT(told, ElementsAre(Pair(Severity::Error, "sbus-host: no such file")));
}

TEST_F(Events, KeepWhatOnlyLooksLikeAMark) {
    out << "<8>a\n<tank> b\n<3\n";
    EXPECT_THAT(told, ElementsAre(Pair(Severity::Note, "<8>a"), Pair(Severity::Note, "<tank> b"),
                                  Pair(Severity::Note, "<3")));
}

TEST_F(Events, AreNotMadeOfEmptyLines) {
    out << "\n\n<4>\n";
    EXPECT_TRUE(told.empty());
}

TEST_F(Events, DoNotMixTheLinesOfTwoThreads) {
    out << "<3>one " << std::flush;
    std::thread([this] {
        std::ostream other(&stream);
        other << "<4>two\n";
    }).join();
    out << "half\n";
    EXPECT_THAT(told, ElementsAre(Pair(Severity::Warning, "two"), Pair(Severity::Error, "one half")));
}
