#include "TableKeys.h"

#include <algorithm>
#include <optional>

namespace host {

namespace {

using Kind = TableKey::Kind;

constexpr char escape = '\x1b';

struct Sequence {
    const char* text; // behind the escape
    Kind kind;
};

// Of the terminals that there are, with and without the application mode of their keys.
constexpr Sequence sequences[] = {
    {"[A", Kind::Up},      {"OA", Kind::Up},        {"[B", Kind::Down}, {"OB", Kind::Down},
    {"[H", Kind::Home},    {"OH", Kind::Home},      {"[F", Kind::End},  {"OF", Kind::End},
    {"[1~", Kind::Home},   {"[7~", Kind::Home},     {"[4~", Kind::End}, {"[8~", Kind::End},
    {"[5~", Kind::PageUp}, {"[6~", Kind::PageDown},
};

bool isFinal(char byte) {
    return byte >= 0x40 && byte <= 0x7E;
}

// How long the sequence at `start` is, its escape included; 0 when its end is still to come.
std::size_t sequenceLength(const std::string& bytes, std::size_t start) {
    if (start + 1 >= bytes.size())
        return 0;
    const char introducer = bytes[start + 1];
    if (introducer != '[' && introducer != 'O')
        return 1; // the escape alone; what follows is a key of its own
    for (std::size_t i = start + 2; i < bytes.size(); ++i)
        if (isFinal(bytes[i]))
            return i + 1 - start;
    return 0;
}

std::optional<Kind> kindOf(const std::string& sequence) {
    if (sequence.size() == 1)
        return Kind::Escape;
    const auto* const found =
        std::find_if(std::begin(sequences), std::end(sequences), [&sequence](const Sequence& one) {
            return sequence.compare(1, std::string::npos, one.text) == 0;
        });
    return found == std::end(sequences) ? std::nullopt : std::optional<Kind>(found->kind);
}

std::size_t characterLength(char lead) {
    const auto code = static_cast<unsigned char>(lead);
    return code >= 0xF0 ? 4 : code >= 0xE0 ? 3 : code >= 0xC0 ? 2 : 1;
}

std::optional<TableKey> keyOf(const std::string& character) {
    const auto code = static_cast<unsigned char>(character.front());
    if (code == '\r' || code == '\n')
        return TableKey{Kind::Enter, {}};
    if (code == 0x7F || code == '\b')
        return TableKey{Kind::Backspace, {}};
    if (code < 0x20)
        return std::nullopt;
    return TableKey{Kind::Character, character};
}

} // namespace

std::vector<TableKey> KeyDecoder::decode(const std::string& bytes) {
    const bool isQuiet = bytes.empty();
    const std::string text = waiting + bytes;
    waiting.clear();
    std::vector<TableKey> keys;
    for (std::size_t i = 0; i < text.size();) {
        const bool isSequence = text[i] == escape;
        std::size_t length = isSequence ? sequenceLength(text, i) : characterLength(text[i]);
        if (length == 0 || i + length > text.size()) {
            if (!isQuiet) {
                waiting = text.substr(i);
                return keys;
            }
            length = 1;
        }
        const std::string part = text.substr(i, length);
        if (!isSequence) {
            if (const std::optional<TableKey> key = keyOf(part))
                keys.push_back(*key);
        } else if (const std::optional<Kind> kind = kindOf(part)) {
            keys.push_back({*kind, {}});
        }
        i += length;
    }
    return keys;
}

} // namespace host
