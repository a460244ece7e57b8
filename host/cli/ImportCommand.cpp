#include "ImportCommand.h"

#include "site/CountText.h"
#include "symbols/SymbolImport.h"

#include <ControlCharacters.h>
#include <TextFile.h>

#include <filesystem>
#include <fstream>
#include <iostream>

namespace host {

namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t largestList = 536'870'912; // 512 MB, as large as a point table may be

ExitStatus fail(const std::string& fault) {
    std::cerr << "sbus-host: " << text::printable(fault) << '\n';
    return ExitStatus::Configuration;
}

// Empty, or why the file is not to be written.
std::string outputFault(const ImportOptions& options) {
    std::error_code failure;
    const fs::path output = fs::u8path(options.output);
    if (!fs::exists(output, failure))
        return {};
    for (const std::string& list : options.lists)
        if (fs::equivalent(output, fs::u8path(list), failure))
            return options.output + " is one of the symbol lists; name another file with -o";
    if (!options.overwrites)
        return options.output + " is there already; name another file, or write over it with --force";
    return fs::is_regular_file(output, failure) ? "" : options.output + " is no regular file";
}

void readList(const std::string& list, SymbolImport& import, Findings& findings) {
    text::FileText read = text::readTextFile(list, largestList);
    if (read.contents)
        import.read(std::move(*read.contents), list, findings);
    else
        findings.error({list}, read.fault, "name a symbol list that can be read");
}

bool write(const std::string& path, const std::string& contents) {
    std::ofstream file(fs::u8path(path), std::ios::binary | std::ios::trunc);
    file << contents;
    file.close();
    return !file.fail();
}

} // namespace

ExitStatus importSymbols(const ImportOptions& options) {
    const std::string fault = outputFault(options);
    if (!fault.empty())
        return fail(fault);
    SymbolImport import(options.columns);
    Findings findings;
    for (const std::string& list : options.lists)
        readList(list, import, findings);
    findings.finish();
    for (const Finding& finding : findings.all())
        std::cerr << toText(finding) << '\n';
    for (const std::string& line : leftOutLines(import.leftOut()))
        std::cerr << line << '\n';
    if (findings.hasErrors())
        return ExitStatus::Configuration;
    if (import.points().empty())
        return fail("no symbol could be taken; " + options.output + " is not written");
    if (!write(options.output, pointTableText(import.points())))
        return fail(options.output + " cannot be written");
    std::cout << text::printable(options.output) << ": " << countText(import.points().size(), "point") << ", "
              << countText(import.leftOut().size(), "symbol") << " left out" << std::endl;
    return ExitStatus::Good;
}

} // namespace host
