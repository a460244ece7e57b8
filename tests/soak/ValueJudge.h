#pragma once

#include <HalvexDriverComponent/HalvexDriverCoreInterface.h>

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

// Words that tell of themselves which register they belong to and which generation of values they are of. No
// byte of them is 0.
namespace coded {

constexpr unsigned mostRegisters = 32;
constexpr unsigned mostGenerations = 255 * 255;

std::uint32_t wordOf(unsigned registerNumber, unsigned generation);
// Nothing: such a word was never in any register.
struct Decoded {
    unsigned registerNumber;
    unsigned generation;
};
bool decode(double value, Decoded& decoded);

} // namespace coded

// Looks at every value that a host is told of: whether the controller ever had it, and how many requests an
// RTU took until a fresh one came. Point 0 and so on are registers with coded words; of other points it is
// told what they may hold. Any thread.
class ValueJudge : public HalvexDriverCoreInterface {
public:
    // Before the host starts. Of the point any one of them is right.
    void allow(int channel, unsigned point, double value);

    // The controller of this channel holds this generation from now on.
    void setGeneration(int channel, unsigned generation);
    // The channel's trouble is over: from here its requests are counted.
    void countRequests(int channel);
    // How many requests had ended when the newest generation was read; 0: it has not been read.
    std::uint64_t requestsUntilFresh(int channel) const;

    std::vector<std::string> wrongValues() const;
    std::uint64_t values() const;

    void publishPoints(int channel, int rtu, const QVector<PointUpdate>& updates) override;
    void publishRtuStatus(int channel, int rtu, const RtuStatus& status) override;
    void publishChannelStatus(int channel, const ChannelStatus& status) override;

private:
    struct Line {
        std::multimap<unsigned, double> allowed;
        unsigned generation = 0;
        std::uint64_t requests = 0;
        std::uint64_t requestsBefore = 0;
        std::uint64_t requestsWhenFresh = 0;
    };

    bool isRight(Line& line, const PointUpdate& update);

    mutable std::mutex mutex;
    std::map<int, Line> lines;
    std::vector<std::string> wrong;
    std::uint64_t seen = 0;
};
