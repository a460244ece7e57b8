#include "EventStream.h"

#include <utility>

namespace host {

namespace {

constexpr std::size_t markLength = 3;

Severity severityOf(const std::string& mark) {
    return mark == "<3>" ? Severity::Error : mark == "<4>" ? Severity::Warning : Severity::Note;
}

bool isMark(const std::string& text) {
    return text.size() == markLength && text[0] == '<' && text[1] >= '0' && text[1] <= '7' && text[2] == '>';
}

} // namespace

EventStream::EventStream(Take takeEvent) : take(std::move(takeEvent)) {}

void EventStream::tell(const std::string& line) {
    const std::string mark = line.substr(0, markLength);
    const std::string text = isMark(mark) ? line.substr(markLength) : line;
    if (!text.empty())
        take(severityOf(mark), text);
}

void EventStream::append(char letter) {
    const auto line = begun.emplace(std::this_thread::get_id(), std::string()).first;
    if (letter != '\n') {
        line->second += letter;
        return;
    }
    const std::string text = std::move(line->second);
    begun.erase(line);
    tell(text);
}

EventStream::int_type EventStream::overflow(int_type letter) {
    const std::lock_guard<std::mutex> lock(mutex);
    if (!traits_type::eq_int_type(letter, traits_type::eof()))
        append(traits_type::to_char_type(letter));
    return traits_type::not_eof(letter);
}

std::streamsize EventStream::xsputn(const char* text, std::streamsize length) {
    const std::lock_guard<std::mutex> lock(mutex);
    for (std::streamsize at = 0; at < length; ++at)
        append(text[at]);
    return length;
}

} // namespace host
