#pragma once

#include <HalvexDriverComponent/CReply.h>
#include <HalvexDriverComponent/CRtu.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

// An RTU that notes the commands which it is given and ends them when the test says so.
// Commands arrive on any thread; the rest is for any thread.
class CommandedRtu : public CRtu {
public:
    CommandedRtu() : CRtu(nullptr, nullptr, {}) {}

    // From now on each command ends at once with `result`.
    void answerAtOnce(Halvex::DriverErrorResult result) {
        const std::lock_guard<std::mutex> lock(mutex);
        ready = result;
    }
    // Until takeAgain, each command is refused with `result` and its reply left alone.
    void refuse(Halvex::DriverErrorResult result) {
        const std::lock_guard<std::mutex> lock(mutex);
        refusal = static_cast<int>(result);
    }
    void takeAgain() {
        const std::lock_guard<std::mutex> lock(mutex);
        refusal = 0;
    }

    // Waits until `count` commands have come in all; what they were, as "switch 1 on", "set 2 3.5",
    // "list 2=1 3=4", "clock".
    std::vector<std::string> awaitCalls(std::size_t count) {
        std::unique_lock<std::mutex> lock(mutex);
        arrived.wait(lock, [&] { return noted.size() >= count; });
        return noted;
    }
    std::vector<std::string> calls() { return awaitCalls(0); }
    // Commands that have come and not ended.
    std::size_t open() {
        const std::lock_guard<std::mutex> lock(mutex);
        return replies.size();
    }
    // Ends the oldest open command.
    void end(Halvex::DriverErrorResult result) {
        std::unique_lock<std::mutex> lock(mutex);
        CReply* const reply = replies.front();
        replies.pop_front();
        lock.unlock();
        complete(reply, result);
    }

    int statusWrite(unsigned point, signed char command, CReply* reply) override {
        return take("switch " + std::to_string(point) + (command != 0 ? " on" : " off"), reply);
    }
    int analogWrite(unsigned point, double value, CReply* reply) override {
        return take("set " + std::to_string(point) + " " + number(value), reply);
    }
    int analogWriteList(const QMap<unsigned, double>& list, CReply* reply) override {
        std::string text = "list";
        for (auto value = list.begin(); value != list.end(); ++value)
            text += " " + std::to_string(value.key()) + "=" + number(value.value());
        return take(text, reply);
    }
    int timeSync(CReply* reply) override { return take("clock", reply); }

private:
    static std::string number(double value) { return QString::number(value, 'g', 15).toStdString(); }

    // As a protocol engine does.
    static void complete(CReply* reply, Halvex::DriverErrorResult result) {
        reply->errorResult = result;
        if (reply->replyed())
            delete reply;
        else
            reply->setRefer(Halvex::DriverErrorResult::Success);
    }

    int take(const std::string& text, CReply* reply) {
        std::unique_lock<std::mutex> lock(mutex);
        noted.push_back(text);
        arrived.notify_all();
        if (refusal != 0)
            return refusal;
        reply->addRefer();
        if (!ready) {
            replies.push_back(reply);
            return 0;
        }
        const Halvex::DriverErrorResult result = *ready;
        lock.unlock();
        complete(reply, result);
        return 0;
    }

    std::mutex mutex;
    std::condition_variable arrived;
    std::vector<std::string> noted;
    std::deque<CReply*> replies;
    std::optional<Halvex::DriverErrorResult> ready;
    int refusal = 0;
};
