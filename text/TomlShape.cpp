#include "TomlShape.h"

#include "Utf8.h"

#include <algorithm>

namespace text {

namespace {

constexpr unsigned deepestNesting = 16;
constexpr unsigned mostKeyParts = 16;

// Goes over a TOML text, past strings and comments, and counts brackets and dots. Where the text is no TOML
// it ends: the parser goes no further either.
class ShapeReader {
public:
    explicit ShapeReader(std::string_view tomlText) : toml(tomlText) {}

    std::optional<ShapeFault> read() {
        while (position < toml.size() && !fault && !isBroken)
            readNext();
        return fault;
    }

private:
    void readNext() {
        switch (toml[position]) {
        case '#':
            position = std::min(toml.find('\n', position), toml.size());
            return;
        case '"':
        case '\'':
            readString(toml[position]);
            return;
        case '[':
        case '{':
            countBracket();
            break;
        case ']':
        case '}':
            depth -= depth > 0 ? 1 : 0;
            parts = 0;
            break;
        case '.':
            countPart();
            break;
        case '\n':
        case '=':
        case ',':
            parts = 0;
            break;
        default:
            break;
        }
        ++position;
    }

    void countBracket() {
        parts = 0;
        if (++depth > deepestNesting)
            refuse("more than " + std::to_string(deepestNesting) + " arrays and tables within each other",
                   "a site file needs no more than four; look for a bracket too many");
    }

    void countPart() {
        if (++parts >= mostKeyParts)
            refuse("key of more than " + std::to_string(mostKeyParts) + " parts",
                   "a key of a site file has no more than three, such as channel.rtu.point");
    }

    void refuse(const std::string& what, const std::string& remedy) {
        const Position at = positionOf(toml, position);
        fault = ShapeFault{at.line, at.column, what, remedy};
    }

    bool isAt(char quote, std::size_t place) const { return place < toml.size() && toml[place] == quote; }

    void readString(char quote) {
        if (isAt(quote, position + 1) && isAt(quote, position + 2))
            readLongString(quote);
        else
            readShortString(quote);
    }

    void readShortString(char quote) {
        for (++position; position < toml.size() && toml[position] != '\n'; ++position) {
            if (toml[position] == quote) {
                ++position;
                return;
            }
            if (toml[position] == '\\' && quote == '"')
                ++position;
        }
        isBroken = true;
    }

    // Up to two quotes may stand before the three that end it.
    void readLongString(char quote) {
        for (position += 3; position < toml.size(); ++position) {
            if (toml[position] == '\\' && quote == '"') {
                ++position;
            } else if (isAt(quote, position) && isAt(quote, position + 1) && isAt(quote, position + 2)) {
                position += 3;
                for (int extra = 0; extra < 2 && isAt(quote, position); ++extra)
                    ++position;
                return;
            }
        }
        isBroken = true;
    }

    const std::string_view toml;
    std::size_t position = 0;
    unsigned depth = 0; // of brackets
    unsigned parts = 0; // dots of the key so far
    bool isBroken = false;
    std::optional<ShapeFault> fault;
};

} // namespace

std::optional<ShapeFault> findTomlShapeFault(std::string_view toml) {
    const std::size_t invalid = findInvalidUtf8(toml);
    if (invalid != std::string_view::npos) {
        const Position at = positionOf(toml, invalid);
        return ShapeFault{at.line, at.column, "text that is not UTF-8",
                          "save the file as UTF-8; editors offer it where they save under another name"};
    }
    return ShapeReader(toml).read();
}

} // namespace text
