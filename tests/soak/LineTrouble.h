#pragma once

#include "Impairment.h"
#include "UdpRelay.h"

#include <Telegram.h>

#include <array>
#include <atomic>

namespace soak {

// Bytes that a relay lets go at a time, and to which end.
struct Passage {
    Direction direction;
    Delivery delivery;
};

// What a serial line does to the bytes that pass over it. No I/O; the relay's thread alone.
class LineTrouble {
public:
    virtual ~LineTrouble();

    // `bytes` have come in at `now` on their way in `direction`, mostly a whole telegram.
    virtual std::vector<Passage> pass(Direction direction, const QByteArray& bytes,
                                      Clock::time_point now) = 0;
};

// A seeded bad line: telegrams suffer as wholes, and are cut into up to four pieces which suffer each for
// itself.
//
// What a checksum of 16 bits cannot tell from a good telegram, one garbled telegram in 65,536, is no fault of
// whoever takes it: such a telegram passes whole. Pieces that were held back can meet the next telegram,
// which nobody looks at here; there the same odds are left.
class BadSerialLine : public LineTrouble {
public:
    struct Maltreatment {
        Rates telegrams;
        Rates pieces;
    };

    // What is spared is added to `sparedCount`, which outlives the line.
    BadSerialLine(sim::Framing lineFraming, const Maltreatment& maltreatment, std::uint64_t seed,
                  std::atomic<unsigned>& sparedCount);

    std::vector<Passage> pass(Direction direction, const QByteArray& bytes, Clock::time_point now) override;

private:
    struct Way {
        Impairment telegrams;
        Impairment pieces;
    };

    std::vector<QByteArray> cut(const QByteArray& bytes);
    bool looksRight(Direction direction, const QByteArray& original, const QByteArray& arriving) const;

    const sim::Framing framing;
    std::array<Way, 2> ways; // by direction
    std::mt19937_64 random;
    std::atomic<unsigned>& spared;
};

} // namespace soak
