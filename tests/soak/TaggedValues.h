#pragma once

#include <HalvexDriverComponent/HalvexDriverCoreInterface.h>

#include <QString>

#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>
#include <utility>

namespace soak {

// Where a value belongs and which of its values it is: words that tell their own place, so that a value of
// another element, or a spoilt one, is recognised wherever it turns up.
constexpr unsigned mostPlaces = 0x7FFF; // a word is never negative
constexpr std::uint32_t taggedWord(unsigned place, std::uint16_t move) {
    return place << 16 | move;
}
// A bit tells less. Those of neighbouring places are as good as random, and stand still.
constexpr std::uint32_t taggedBit(unsigned place) {
    return (place * 2654435761U >> 16) & 1;
}

// Judges every value that is published of points whose elements hold tagged values. Any thread.
class ValueJudge : public HalvexDriverCoreInterface {
public:
    // What a point may show.
    enum class Kind {
        Bit,      // the place's own
        Standing, // the word of move 0
        Moving,   // words of moves up to the present one, which never go back
        Commanded // 0, or words of commands up to the last one given
    };

    // Before anything is published.
    void expect(int channelId, int rtuId, unsigned point, unsigned place, Kind kind);
    // Late answers that nothing tells from others may bring an older value once more.
    void allowOlderValues() { mayGoBack = true; }

    // The elements hold this move's values next, or hold them already.
    std::uint16_t nextMove() { return static_cast<std::uint16_t>(++move); }
    // A command point is given `number` next, or was already.
    void noteCommand(unsigned place, std::uint16_t number);

    // From now on a moving point is fresh when it is good and shows a move that begins after this call, any
    // other point when it is read well once more. Of what tells changes alone, moving points are all to be
    // had.
    enum class Demanded { AllPoints, MovingPoints };
    void demandFresh(Demanded which = Demanded::AllPoints);
    // Whether all points have been fresh since; and the most requests that an RTU has ended until all of its
    // points were.
    bool isAllFresh() const;
    std::uint64_t mostRequestsUntilFresh() const;
    // The published values that no element has had; the first ones in words.
    std::uint64_t wrongCount() const;
    QString wrongValues() const;
    std::uint64_t valueCount() const;

    void publishPoints(int channelId, int rtuId, const QVector<PointUpdate>& updates) override;
    void publishRtuStatus(int channelId, int rtuId, const RtuStatus& status) override;
    void publishChannelStatus(int, const ChannelStatus&) override {}

private:
    struct Entry {
        unsigned place = 0;
        Kind kind = Kind::Bit;
        std::uint16_t move = 0; // shown last
        bool isFresh = false;
    };

    struct Rtu {
        std::map<unsigned, Entry> points;
        std::size_t stale = 0; // points that are not fresh
        std::uint64_t requests = 0;
        std::uint64_t requestsAtDemand = 0;
        std::uint64_t requestsUntilFresh = 0;
    };

    void judge(const PointUpdate& update, Rtu& rtu, Entry& entry);
    void noteWrong(const PointUpdate& update, const Entry& entry);
    bool isPossible(const Entry& entry, std::uint32_t value) const;
    bool isPossibleMove(const Entry& entry, std::uint16_t shown) const;

    std::atomic<unsigned> move{0};
    bool mayGoBack = false;

    mutable std::mutex mutex;                    // guards what follows
    std::map<std::pair<int, int>, Rtu> rtus;     // by channel and RTU
    std::map<unsigned, std::uint16_t> commanded; // the last number, by place
    std::uint16_t demanded = 0;
    std::uint64_t values = 0;
    std::uint64_t wrong = 0;
    QString wrongText;
};

} // namespace soak
