#include "WriteSteps.h"

#include "commands/DriverCall.h"
#include "plan/OneShotSite.h"
#include "site/PointValue.h"

namespace host {

namespace {

WriteStep stepOf(const WordCommand& command) {
    WriteStep step;
    for (const WordWrite& write : command)
        step.writes.push_back(write.point);
    step.isFloat = command.front().isFloat;
    step.action = actionOf(command);
    return step;
}

} // namespace

std::vector<WriteStep> planWriteSteps(const std::vector<ElementWrite>& writes) {
    std::vector<WordWrite> words;
    std::vector<WriteStep> bits;
    for (std::size_t place = 0; place < writes.size(); ++place) {
        const ElementWrite& write = writes[place];
        const auto point = static_cast<unsigned>(place);
        if (isBitMedia(write.address.media))
            bits.push_back({SwitchPoint{point, write.value != 0}, {place}, false});
        else
            words.push_back(
                {point, write.address, goesAsFloat(write), rawOf(pointOf(write), write.value).raw});
    }
    std::vector<WriteStep> steps;
    for (const WordCommand& command : planWordWrites(words))
        steps.push_back(stepOf(command));
    steps.insert(steps.end(), bits.begin(), bits.end());
    return steps;
}

} // namespace host
