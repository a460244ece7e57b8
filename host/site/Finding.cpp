#include "Finding.h"

#include <ControlCharacters.h>

#include <algorithm>
#include <limits>
#include <tuple>

namespace host {

namespace {

// A fault of a whole column comes once for each row; whoever sees twenty of them knows what it is.
constexpr std::size_t mostOfAFile = 20;
// Of what counts the findings that are left out.
constexpr unsigned behindAllColumns = std::numeric_limits<unsigned>::max();

const char* severityText(Severity severity) {
    switch (severity) {
    case Severity::Error:
        return " error: ";
    case Severity::Warning:
        return " warning: ";
    case Severity::Note:
        break;
    }
    return " note: ";
}

const char* nameOfMore(Severity severity) {
    return severity == Severity::Error     ? " more errors"
           : severity == Severity::Warning ? " more warnings"
                                           : " more notes";
}

} // namespace

std::string toText(const Finding& finding) {
    std::string text = finding.place.file + ':';
    if (finding.place.line > 0)
        text += std::to_string(finding.place.line) + ':' + std::to_string(finding.place.column) + ':';
    text += severityText(finding.severity) + finding.what;
    if (!finding.remedy.empty())
        text += "; " + finding.remedy;
    return text::printable(text);
}

void Findings::error(const Place& place, const std::string& what, const std::string& remedy) {
    add({Severity::Error, place, what, remedy});
}

void Findings::warning(const Place& place, const std::string& what, const std::string& remedy) {
    add({Severity::Warning, place, what, remedy});
}

void Findings::note(const Place& place, const std::string& what) {
    add({Severity::Note, place, what, {}});
}

void Findings::add(Finding finding) {
    if (!seen.insert(std::hash<std::string>()(toText(finding))).second)
        return;
    FileCount& file = files.try_emplace(finding.place.file, FileCount{files.size(), {}}).first->second;
    if (++file.found[static_cast<std::size_t>(finding.severity)] <= mostOfAFile)
        list.push_back(std::move(finding));
}

bool Findings::hasErrors() const {
    return std::any_of(list.begin(), list.end(),
                       [](const Finding& finding) { return finding.severity == Severity::Error; });
}

void Findings::finish() {
    const auto isCount = [](const Finding& finding) { return finding.place.column == behindAllColumns; };
    list.erase(std::remove_if(list.begin(), list.end(), isCount), list.end()); // of an earlier call
    for (const auto& [file, counts] : files)
        for (const Severity severity : {Severity::Error, Severity::Warning, Severity::Note}) {
            const std::size_t found = counts.found[static_cast<std::size_t>(severity)];
            if (found <= mostOfAFile)
                continue;
            Finding rest;
            rest.severity = severity;
            rest.place = {file, 0, behindAllColumns};
            rest.what = std::to_string(found - mostOfAFile) + nameOfMore(severity) + " in this file";
            rest.remedy = "correct those above first";
            list.push_back(rest);
        }
    const auto key = [&](const Finding& finding) {
        return std::make_tuple(files.at(finding.place.file).order, isCount(finding), finding.place.line,
                               finding.place.column);
    };
    std::stable_sort(list.begin(), list.end(),
                     [&key](const Finding& a, const Finding& b) { return key(a) < key(b); });
}

} // namespace host
