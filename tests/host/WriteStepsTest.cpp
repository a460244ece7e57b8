#include "oneshot/WriteSteps.h"

#include <gtest/gtest.h>

namespace host {
namespace {

// "R10=1 R11=2 | O5 on": the steps in order. Points are told by their address.
std::string told(std::initializer_list<const char*> texts) {
    std::vector<ElementWrite> writes;
    for (const char* const text : texts)
        writes.push_back(parseElementWrite(text).write);
    std::string text;
    for (const WriteStep& step : planWriteSteps(writes)) {
        text += text.empty() ? "" : " | ";
        const auto name = [&writes](unsigned point) { return toText(writes[point].address); };
        if (const auto* const bit = std::get_if<SwitchPoint>(&step.action)) {
            text += name(bit->point) + (bit->on ? " on" : " off");
        } else if (const auto* const word = std::get_if<SetPoint>(&step.action)) {
            text += name(word->point) + (step.isFloat ? "~" : "=") +
                    std::to_string(static_cast<int>(word->value));
        } else {
            std::string list;
            for (const auto& [point, value] : std::get<SetPoints>(step.action).values)
                list +=
                    (list.empty() ? "" : " ") + name(point) + "=" + std::to_string(static_cast<int>(value));
            text += list;
        }
    }
    return text;
}

} // namespace

TEST(WriteSteps, SetPointsComeBeforeOutputs) {
    EXPECT_EQ(told({"O5=1", "R10=12", "F3=0"}), "R10=12 | O5 on | F3 off");
}

TEST(WriteSteps, ConsecutiveIntegersAreOneList) {
    EXPECT_EQ(told({"R10=1", "R11=2", "R20=3"}), "R10=1 R11=2 | R20=3");
}

TEST(WriteSteps, FloatsGoByThemselves) {
    EXPECT_EQ(told({"R10:float=1", "R11:float=2"}), "R10~1 | R11~2");
}

TEST(WriteSteps, NumbersOfFormatIeeeGoAsTheirBits) {
    EXPECT_EQ(told({"R10:ieee=1.5", "R11=2", "R20:ieee=-2"}), "R10=1069547520 R11=2 | R20=-1073741824");
}

TEST(WriteSteps, AFloatingPointZeroIsAnInteger) {
    EXPECT_EQ(told({"R10:float=0", "R11=2"}), "R10=0 R11=2");
}

TEST(WriteSteps, OutputsKeepTheirOrder) {
    EXPECT_EQ(told({"O9=1", "O2=0", "O9=0"}), "O9 on | O2 off | O9 off");
}

TEST(WriteSteps, EachNamesTheWritesThatItCarriesOut) {
    const std::vector<WriteStep> steps =
        planWriteSteps({parseElementWrite("O5=1").write, parseElementWrite("R11=1").write,
                        parseElementWrite("R10=1").write});
    ASSERT_EQ(steps.size(), 2U);
    EXPECT_EQ(steps[0].writes, (std::vector<std::size_t>{2, 1}));
    EXPECT_EQ(steps[1].writes, (std::vector<std::size_t>{0}));
}

} // namespace host
