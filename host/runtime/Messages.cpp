#include "Messages.h"

#include "site/CountText.h"
#include "values/TimeText.h"

#include <QDateTime>

#include <utility>

namespace host {

namespace {

constexpr std::size_t mostWaiting = 20'000; // for a screen that is slower than the frames of all lines

} // namespace

std::string messageLine(const Message& message) {
    return localTimeText(message.timeMs) + "  " + message.text;
}

void Messages::tell(const std::string& text, Severity severity) {
    const std::lock_guard<std::mutex> lock(mutex);
    const Message message{QDateTime::currentMSecsSinceEpoch(), text, severity};
    if (keeper)
        keeper(message);
    if (waiting.size() < mostWaiting)
        waiting.push_back(message);
    else
        ++lost;
}

std::vector<Message> Messages::takeWithTimes() {
    const std::lock_guard<std::mutex> lock(mutex);
    std::vector<Message> taken;
    taken.swap(waiting);
    if (lost > 0)
        taken.push_back({QDateTime::currentMSecsSinceEpoch(),
                         countWereText(lost, "message") + " lost: more came than was read",
                         Severity::Warning});
    lost = 0;
    return taken;
}

std::vector<std::string> Messages::take() {
    std::vector<std::string> texts;
    for (Message& message : takeWithTimes())
        texts.push_back(std::move(message.text));
    return texts;
}

void Messages::setKeeper(Keeper messageKeeper) {
    const std::lock_guard<std::mutex> lock(mutex);
    keeper = std::move(messageKeeper);
}

} // namespace host
