#pragma once

#include <QByteArray>

#include <cstdint>
#include <map>
#include <optional>
#include <tuple>

enum class LineMode { Ethernet, DataMode, BreakMode };

struct Element {
    int station;
    char media;
    unsigned number;
};

inline bool operator<(const Element& a, const Element& b) {
    return std::tie(a.station, a.media, a.number) < std::tie(b.station, b.media, b.number);
}

// The controllers of one line: what their elements hold, and how they answer. Written from the telegrams'
// description, with no code of the driver's or the simulator's, so that it can be held against the driver.
// Every station is there and has every element; what was never set is 0.
class ModelController {
public:
    struct Answer {
        QByteArray bytes; // empty: none
        bool isRead = false;
        bool isAccepted = false; // carried out
    };

    explicit ModelController(LineMode lineMode) : mode(lineMode) {}

    // Of a bit the lowest of `word`.
    void set(const Element& element, std::uint32_t word);

    // Carries the telegram out. `bytesMore` of payload, or less when negative, go with the answer to a read
    // than it should have.
    Answer respond(const QByteArray& telegram, int bytesMore = 0);
    // Says no and does nothing.
    Answer refuse(const QByteArray& telegram, std::uint8_t code) const;

    // What the last answer of its station has said of the element.
    std::optional<std::uint32_t> lastSaid(const Element& element) const;

private:
    std::optional<QByteArray> bodyOf(const QByteArray& telegram) const;
    QByteArray framed(std::uint8_t attribute, const QByteArray& payload, const QByteArray& telegram) const;
    QByteArray acknowledge(std::uint8_t code, const QByteArray& telegram) const;
    QByteArray read(char media, const QByteArray& body);
    bool write(const QByteArray& body);
    bool writeWords(char media, const QByteArray& body);
    bool writeBits(char media, const QByteArray& body);

    const LineMode mode;
    std::map<Element, std::uint32_t> words;
    std::map<Element, std::uint32_t> said;
};
