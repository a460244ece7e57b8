#pragma once

#include <set>
#include <string>
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

enum class Severity { Error, Warning };

struct Finding {
    Severity severity = Severity::Error;
    Place place;
    std::string what;
    std::string remedy; // what would be right
};

// "file:line:column: error: what; remedy"
std::string toText(const Finding& finding);

// Everything that was found while a site was read, so that all of it can be told in one go. The same finding
// counts once, however often its file is read.
class Findings {
public:
    void error(const Place& place, const std::string& what, const std::string& remedy);
    void warning(const Place& place, const std::string& what, const std::string& remedy);

    bool hasErrors() const;
    const std::vector<Finding>& all() const { return list; }
    // By line and column within each file; the files in the order of their first finding.
    void sort();

private:
    void add(const Finding& finding);

    std::vector<Finding> list;
    std::set<std::string> texts; // of the list
};

} // namespace host
