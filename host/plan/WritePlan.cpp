#include "WritePlan.h"

#include <map>
#include <utility>

namespace host {

namespace {

using WritesByElement = std::map<std::pair<char, unsigned>, WordWrite>;

bool continues(const WordCommand& list, const WordWrite& next, unsigned longestList) {
    const WordWrite& last = list.back();
    return list.size() < longestList && !last.isFloat && !next.isFloat &&
           next.address == ElementAddress{last.address.media, last.address.number + 1};
}

void appendCommands(std::vector<WordCommand>& commands, const WritesByElement& writes, unsigned longestList) {
    bool isFirst = true; // an earlier batch stays closed: its elements may come again in this one
    for (const auto& [element, write] : writes) {
        if (!isFirst && continues(commands.back(), write, longestList))
            commands.back().push_back(write);
        else
            commands.push_back({write});
        isFirst = false;
    }
}

} // namespace

std::vector<WordCommand> planWordWrites(const std::vector<WordWrite>& writes, unsigned longestList) {
    std::vector<WordCommand> commands;
    WritesByElement batch;
    for (const WordWrite& write : writes) {
        const std::pair<char, unsigned> element(write.address.media, write.address.number);
        if (batch.count(element) > 0) {
            appendCommands(commands, batch, longestList);
            batch.clear();
        }
        batch.emplace(element, write);
    }
    appendCommands(commands, batch, longestList);
    return commands;
}

} // namespace host
