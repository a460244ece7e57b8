#pragma once

#include "LineTrouble.h"

namespace soak {

// Whatever comes from the controllers comes in single bytes, so far apart. More than 20 ms is the end of an
// answer.
class DrippingPeer : public LineTrouble {
public:
    explicit DrippingPeer(std::chrono::milliseconds timeBetweenBytes) : step(timeBetweenBytes) {}

    std::vector<Passage> pass(Direction direction, const QByteArray& bytes, Clock::time_point now) override;

private:
    const std::chrono::milliseconds step;
    Clock::time_point last{};
};

// Requests come back to the host, and the controllers' answers behind them or not at all.
class EchoingPeer : public LineTrouble {
public:
    explicit EchoingPeer(bool lettingAnswersThrough) : answers(lettingAnswersThrough) {}

    std::vector<Passage> pass(Direction direction, const QByteArray& bytes, Clock::time_point now) override;

private:
    const bool answers;
};

// Answers each request with rubbish, at once and for a while, and keeps it from the controllers. The rubbish
// goes round; nowhere in it stands an answer of one of the sizes that are waited for, to which even chance
// would give a right checksum once in 65,536, nor the single byte with which Break Mode acknowledges a write
// and which any noise can be.
class RubbishPeer : public LineTrouble {
public:
    RubbishPeer(const std::vector<int>& answerSizes, std::uint64_t seed);

    std::vector<Passage> pass(Direction direction, const QByteArray& bytes, Clock::time_point now) override;

private:
    QByteArray take(int size);

    QByteArray rubbish;
    int position = 0;
    std::mt19937_64 random;
};

} // namespace soak
