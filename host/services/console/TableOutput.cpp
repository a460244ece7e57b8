#include "TableOutput.h"

#include "StreamWriter.h"
#include "Terminal.h"
#include "TerminalSequences.h"
#include "site/CountText.h"

#include <QDateTime>

namespace host {

namespace {

constexpr std::chrono::milliseconds redrawPeriod{250};
constexpr std::chrono::seconds pageTime{5};
constexpr std::chrono::milliseconds lastWrite{200}; // for a terminal that is slow, or was stopped

} // namespace

TableOutput::TableOutput(Console& console, const std::string& tableTitle, const ValueStore& valueStore,
                         FiguresSource figuresSource)
    : out(console.out), error(console.error), figures(std::move(figuresSource)), view(tableTitle, valueStore),
      screen(terminal::mayUseColours()) {
    terminal::prepare();
    takeTerminal();
}

TableOutput::~TableOutput() {
    finish();
}

void TableOutput::takeTerminal() {
    if (ownsTerminal || !terminal::isForeground())
        return;
    terminal::noteScreenTaken(true);
    terminal::beginKeys();
    out.write(terminal::enterScreen);
    screen.forget();
    ownsTerminal = true;
}

void TableOutput::leaveTerminal() {
    if (!ownsTerminal)
        return;
    ownsTerminal = false;
    out.write(terminal::leaveScreen);
    const bool isWritten = out.waitUntilIdle(lastWrite);
    terminal::endKeys();
    if (isWritten)
        terminal::noteScreenTaken(false);
}

bool TableOutput::update() {
    if (terminal::takeRestRequest()) {
        leaveTerminal();
        terminal::rest();
    }
    if (terminal::takeReturn() || !terminal::isForeground())
        leaveTerminal(); // whoever had it meanwhile has set it for himself
    takeTerminal();
    if (!ownsTerminal)
        return out.isGood();
    const bool isAsked = handleKeys();
    const Clock::time_point now = Clock::now();
    if (!view.isInHand() && now - turnedAt >= pageTime) {
        turnedAt = now;
        view.turnPage();
    }
    if ((isAsked || now - drawnAt >= redrawPeriod) && out.isIdle())
        draw();
    return out.isGood();
}

bool TableOutput::handleKeys() {
    const std::vector<TableKey> pressed = keys.decode(terminal::readKeys());
    for (const TableKey& key : pressed)
        view.handle(key);
    return !pressed.empty();
}

void TableOutput::draw() {
    drawnAt = Clock::now();
    const terminal::Size size = terminal::size();
    std::string text = screen.draw(view.rows(size, QDateTime::currentMSecsSinceEpoch(), figures()), size);
    if (!text.empty())
        out.write(std::move(text));
}

void TableOutput::tell(const std::vector<Message>& messages) {
    for (const Message& message : messages) {
        view.tell(message);
        if (!terminal::isErrorTerminal())
            error.write(messageLine(message) + '\n');
    }
}

void TableOutput::showFrames(const std::vector<std::string>& lines) {
    for (const std::string& line : lines)
        error.write(line + '\n');
}

void TableOutput::finish() {
    leaveTerminal();
}

// What was written to another place as it came is not repeated.
std::string TableOutput::lastWords() const {
    if (!terminal::isErrorTerminal())
        return {};
    std::string text;
    if (view.forgottenMessages() > 0)
        text = countText(view.forgottenMessages(), "message") + " before these\n";
    for (const Message& message : view.messages())
        text += messageLine(message) + '\n';
    return text;
}

} // namespace host
