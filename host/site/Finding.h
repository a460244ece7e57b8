#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace host {

// A spot within a file. Line and column count from 1; 0: the file as a whole.
struct Spot {
    unsigned line = 0;
    unsigned column = 0;
};

// A spot in a site file or point table.
struct Place {
    std::string file;
    unsigned line = 0;
    unsigned column = 0;
};

enum class Severity { Error, Warning, Note };
constexpr std::size_t severityCount = 3;

struct Finding {
    Severity severity = Severity::Error;
    Place place;
    std::string what;
    std::string remedy; // what would be right; empty where nothing is wrong
};

// "file:line:column: error: what; remedy", as a line for a terminal.
std::string toText(const Finding& finding);

// Everything that was found while a site was read, so that all of it can be told in one go. The same finding
// counts once, however often its file is read. Of a file's errors, and of its warnings, the first 20 are
// kept; the others are counted.
class Findings {
public:
    void error(const Place& place, const std::string& what, const std::string& remedy);
    void warning(const Place& place, const std::string& what, const std::string& remedy);
    void note(const Place& place, const std::string& what);

    bool hasErrors() const;
    const std::vector<Finding>& all() const { return list; }
    // To be called when everything has been found, and again when more has: sorts by line and column within
    // each file, the files in the order of their first finding, and adds to each how many of its findings are
    // left out.
    void finish();

private:
    struct FileCount {
        std::size_t order = 0;
        std::array<std::size_t, severityCount> found{};
    };

    void add(Finding finding);

    std::vector<Finding> list;
    std::unordered_set<std::size_t> seen; // hashes of the texts of all that was found
    std::unordered_map<std::string, FileCount> files;
};

} // namespace host
