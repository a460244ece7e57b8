#include "TableOutput.h"

#include "TableLayout.h"
#include "TerminalSequences.h"

#include <QDateTime>

#include <iostream>

namespace host {

namespace {

constexpr std::chrono::milliseconds redrawPeriod{250};
constexpr std::chrono::seconds pageTime{5};
constexpr std::size_t keptMessages = 4;

const char* sequenceFor(TableLine::Style style) {
    switch (style) {
    case TableLine::Style::Heading:
        return terminal::bold;
    case TableLine::Style::Bad:
        return terminal::red;
    case TableLine::Style::Dim:
        return terminal::dim;
    case TableLine::Style::Plain:
        break;
    }
    return "";
}

} // namespace

TableOutput::TableOutput(const std::string& tableTitle, ValueStore& valueStore, FiguresSource figuresSource)
    : title(tableTitle), store(valueStore), figures(std::move(figuresSource)) {
    terminal::prepare();
    std::cout << terminal::enterScreen << std::flush;
    ownsTerminal = true;
}

TableOutput::~TableOutput() {
    finish();
}

bool TableOutput::update() {
    const Clock::time_point now = Clock::now();
    if (now - drawnAt < redrawPeriod)
        return std::cout.good();
    drawnAt = now;
    const TableContents contents{title,           QDateTime::currentMSecsSinceEpoch(),
                                 &store.points(), store.states(),
                                 figures(),       newestMessages};
    const auto page = static_cast<std::size_t>((now - startedAt) / pageTime);
    std::string screen = terminal::home;
    const TablePage laidOut = layOutTable(contents, terminal::size(), page);
    for (const TableLine& line : laidOut.lines) {
        screen += &line == &laidOut.lines.front() ? "" : "\r\n";
        screen += sequenceFor(line.style) + line.text + terminal::plain + terminal::clearLineEnd;
    }
    std::cout << screen << terminal::clearBelow << std::flush;
    return std::cout.good();
}

void TableOutput::tell(const std::vector<std::string>& messages) {
    newestMessages.insert(newestMessages.end(), messages.begin(), messages.end());
    if (newestMessages.size() > keptMessages)
        newestMessages.erase(newestMessages.begin(), newestMessages.end() - keptMessages);
    if (!terminal::isErrorTerminal())
        for (const std::string& message : messages)
            std::cerr << message << '\n';
}

void TableOutput::finish() {
    if (ownsTerminal)
        std::cout << terminal::leaveScreen << std::flush;
    ownsTerminal = false;
}

} // namespace host
