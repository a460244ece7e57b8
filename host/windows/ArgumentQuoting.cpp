#include "ArgumentQuoting.h"

namespace host {

// Backslashes stand for themselves, but for those in front of a quotation mark, which are doubled.
std::string quoteArgument(const std::string& argument) {
    std::string quoted = "\"";
    std::size_t backslashes = 0;
    for (const char letter : argument) {
        if (letter == '"')
            quoted.append(backslashes + 1, '\\');
        backslashes = letter == '\\' ? backslashes + 1 : 0;
        quoted += letter;
    }
    quoted.append(backslashes, '\\'); // in front of the one that ends it
    return quoted + '"';
}

std::string joinArguments(const std::vector<std::string>& arguments) {
    std::string line;
    for (const std::string& argument : arguments)
        line += (line.empty() ? "" : " ") + quoteArgument(argument);
    return line;
}

} // namespace host
