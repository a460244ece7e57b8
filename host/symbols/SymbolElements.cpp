#include "SymbolElements.h"

#include "SymbolWords.h"
#include "site/Number.h"

#include <vector>

namespace host {

namespace {

ParsedElements refuse(const std::string& reason) {
    return {std::nullopt, reason};
}

bool isDigit(char letter) {
    return letter >= '0' && letter <= '9';
}

// A word, a number, "..", or one of []-: what a type or an address is made of.
std::vector<std::string> tokensOf(const std::string& text) {
    const std::string marks = "[]().-:%";
    std::vector<std::string> tokens;
    char before = ' ';
    for (const char letter : text) {
        const bool isBlank =
            letter == ' ' || letter == '\t' || letter == '%' || letter == '(' || letter == ')';
        const bool isMark = marks.find(letter) != std::string::npos;
        const bool wasMark = marks.find(before) != std::string::npos;
        const bool continues = !tokens.empty() && before != ' ' && isMark == wasMark &&
                               (isMark ? letter == '.' && before == '.' : isDigit(letter) == isDigit(before));
        if (!isBlank && continues)
            tokens.back() += letter;
        else if (!isBlank)
            tokens.emplace_back(1, letter);
        before = isBlank ? ' ' : letter;
    }
    return tokens;
}

std::optional<unsigned> numberIn(const std::vector<std::string>& tokens, std::size_t place) {
    return place < tokens.size() ? parseNumber(tokens[place], 0, highestElement) : std::nullopt;
}

bool isAt(const std::vector<std::string>& tokens, std::size_t place, const char* token) {
    return place < tokens.size() && tokens[place] == token;
}

// "[10]" at `place`.
std::optional<unsigned> sizeAt(const std::vector<std::string>& tokens, std::size_t place) {
    return isAt(tokens, place, "[") && isAt(tokens, place + 2, "]") ? numberIn(tokens, place + 1)
                                                                    : std::nullopt;
}

struct Type {
    std::optional<char> media;
    std::optional<unsigned> size;
    bool isFloat = false;
    bool isKnown = true;
};

Type parseType(const std::string& text) {
    Type type;
    const std::vector<std::string> tokens = tokensOf(text);
    for (std::size_t i = 0; i < tokens.size() && type.isKnown; ++i) {
        if (const std::optional<unsigned> size = sizeAt(tokens, i)) {
            type.size = size;
            i += 2;
        } else if (isFloatWord(tokens[i])) {
            type.isFloat = true;
        } else if (!type.media) {
            type.media = mediaNamed(tokens[i]);
            type.isKnown = type.media.has_value();
        }
    }
    return type;
}

// Cuts an address into media, first element and number of elements.
class AddressReader {
public:
    AddressReader(const std::string& addressText, const Type& symbolType)
        : tokens(tokensOf(addressText)), type(symbolType) {
        elements.isFloat = type.isFloat;
    }

    ParsedElements read() {
        if (tokens.empty())
            return refuse("it has no address");
        std::optional<char> media = takeMedia();
        if (media && type.media && *media != *type.media)
            return refuse("its type and its address name different media");
        media = media ? media : type.media;
        const std::optional<unsigned> first = numberIn(tokens, place++);
        if (!media || !first)
            return refuse("its address is not that of an element, 0 to 65535");
        elements.first = {*media, *first};
        if (!readCount() || place != tokens.size())
            return refuse("its address is not understood");
        if (elements.isFloat && *media != 'R')
            return refuse("only registers hold floating-point values");
        if (elements.count == 0 || elements.count > highestElement + 1 - *first)
            return refuse("its range ends before it begins, or beyond element 65535");
        return {elements, {}};
    }

private:
    std::optional<char> takeMedia() {
        const std::optional<char> media = mediaNamed(tokens[place]);
        place += media ? 1 : 0;
        return media;
    }

    // What may stand behind the first number: "..109", "-R109", "[10]".
    bool readCount() {
        if (const std::optional<unsigned> size = sizeAt(tokens, place)) {
            place += 3;
            setCount(*size);
            return true;
        }
        if (place == tokens.size()) {
            if (type.size)
                setCount(*type.size);
            return true;
        }
        const std::string& mark = tokens[place++];
        if (mark != ".." && mark != "..." && mark != "-")
            return false;
        if (place < tokens.size() && takeMediaAgain())
            ++place;
        const std::optional<unsigned> last = numberIn(tokens, place++);
        if (last)
            setCount(*last < elements.first.number ? 0 : *last - elements.first.number + 1);
        return last.has_value();
    }

    bool takeMediaAgain() const { return mediaNamed(tokens[place]) == elements.first.media; }

    void setCount(unsigned count) {
        elements.count = count;
        elements.isRange = true;
    }

    const std::vector<std::string> tokens;
    const Type& type;
    std::size_t place = 0;
    SymbolElements elements;
};

} // namespace

ParsedElements parseSymbolElements(const std::string& type, const std::string& address) {
    const Type parsed = parseType(type);
    if (!parsed.isKnown)
        return refuse("kind \"" + type + "\" is not polled");
    // A type is known by its word; without one the address begins with it.
    const std::vector<std::string> tokens = tokensOf(address);
    if (type.empty() && !tokens.empty() && !isDigit(tokens[0][0]) && !mediaNamed(tokens[0]))
        return refuse("kind \"" + tokens[0] + "\" is not polled");
    return AddressReader(address, parsed).read();
}

} // namespace host
