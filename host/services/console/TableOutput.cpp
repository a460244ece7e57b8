#include "TableOutput.h"

#include "StreamWriter.h"
#include "TableLayout.h"
#include "Terminal.h"
#include "TerminalSequences.h"

#include <QDateTime>

namespace host {

namespace {

constexpr std::chrono::milliseconds redrawPeriod{250};
constexpr std::chrono::seconds pageTime{5};
constexpr std::chrono::milliseconds lastWrite{200}; // for a terminal that is slow, or was stopped

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

TableOutput::TableOutput(Console& console, const std::string& tableTitle, const ValueStore& valueStore,
                         FiguresSource figuresSource)
    : out(console.out), error(console.error), title(tableTitle), store(valueStore),
      longestName(longestNameOf(store.points())), figures(std::move(figuresSource)) {
    terminal::prepare();
    terminal::noteScreenTaken(true);
    out.write(terminal::enterScreen);
    ownsTerminal = true;
}

TableOutput::~TableOutput() {
    finish();
}

bool TableOutput::update() {
    const Clock::time_point now = Clock::now();
    if (now - drawnAt < redrawPeriod || !out.isIdle())
        return out.isGood();
    drawnAt = now;
    const TableContents contents{
        title, QDateTime::currentMSecsSinceEpoch(), &store, longestName, figures(), newestMessages};
    const auto page = static_cast<std::size_t>((now - startedAt) / pageTime);
    std::string screen = terminal::home;
    const TablePage laidOut = layOutTable(contents, terminal::size(), page);
    for (const TableLine& line : laidOut.lines) {
        screen += &line == &laidOut.lines.front() ? "" : "\r\n";
        screen += sequenceFor(line.style) + line.text + terminal::plain + terminal::clearLineEnd;
    }
    out.write(screen + terminal::clearBelow);
    return out.isGood();
}

void TableOutput::showFrames(const std::vector<std::string>& lines) {
    for (const std::string& line : lines)
        error.write(line + '\n');
}

void TableOutput::tell(const std::vector<Message>& messages) {
    for (const Message& message : messages)
        newestMessages.push_back(message.text);
    if (newestMessages.size() > mostTableMessages)
        newestMessages.erase(newestMessages.begin(), newestMessages.end() - mostTableMessages);
    if (!terminal::isErrorTerminal())
        for (const Message& message : messages)
            error.write(messageLine(message) + '\n');
}

void TableOutput::finish() {
    if (!ownsTerminal)
        return;
    ownsTerminal = false;
    out.write(terminal::leaveScreen);
    if (out.waitUntilIdle(lastWrite))
        terminal::noteScreenTaken(false);
}

} // namespace host
