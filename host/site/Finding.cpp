#include "Finding.h"

#include <algorithm>
#include <tuple>

namespace host {

std::string toText(const Finding& finding) {
    std::string text = finding.place.file + ':';
    if (finding.place.line > 0)
        text += std::to_string(finding.place.line) + ':' + std::to_string(finding.place.column) + ':';
    text += finding.severity == Severity::Error ? " error: " : " warning: ";
    return text + finding.what + "; " + finding.remedy;
}

void Findings::error(const Place& place, const std::string& what, const std::string& remedy) {
    add({Severity::Error, place, what, remedy});
}

void Findings::warning(const Place& place, const std::string& what, const std::string& remedy) {
    add({Severity::Warning, place, what, remedy});
}

void Findings::add(const Finding& finding) {
    if (texts.insert(toText(finding)).second)
        list.push_back(finding);
}

bool Findings::hasErrors() const {
    return std::any_of(list.begin(), list.end(),
                       [](const Finding& finding) { return finding.severity == Severity::Error; });
}

void Findings::sort() {
    std::vector<std::string> files;
    for (const Finding& finding : list)
        if (std::find(files.begin(), files.end(), finding.place.file) == files.end())
            files.push_back(finding.place.file);
    const auto key = [&files](const Finding& finding) {
        return std::make_tuple(std::find(files.begin(), files.end(), finding.place.file), finding.place.line,
                               finding.place.column);
    };
    std::stable_sort(list.begin(), list.end(),
                     [&key](const Finding& a, const Finding& b) { return key(a) < key(b); });
}

} // namespace host
