#include "HistoryTable.h"

#include "ByteSize.h"
#include "Duration.h"

#include <filesystem>

namespace host {

namespace {

const std::string urlRemedy = "name a file: \"sqlite:history.db\"";
const std::string keepRemedy = "write a number and its unit: \"400d\", \"12h\"";
const std::string sizeRemedy = "write a number and its unit: \"2GB\", \"500MB\"";
const std::string fileScheme = "sqlite:";

bool beginsWith(const std::string& text, const std::string& beginning) {
    return text.compare(0, beginning.size(), beginning) == 0;
}

std::string pathBeside(const std::string& siteFile, const std::string& path) {
    const std::filesystem::path folder = std::filesystem::u8path(siteFile).parent_path();
    return (folder / std::filesystem::u8path(path)).generic_u8string();
}

void readUrl(TomlTable& table, HistorySettings& settings, Findings& findings) {
    table.need("url", urlRemedy);
    const std::optional<Field> url = table.text("url", urlRemedy);
    if (!url)
        return;
    if (beginsWith(url->text, fileScheme) && url->text.size() > fileScheme.size())
        settings.file = pathBeside(settings.place.file, url->text.substr(fileScheme.size()));
    else if (beginsWith(url->text, "postgresql:") || beginsWith(url->text, "postgres:"))
        findings.error(url->place, "this sbus-host cannot record into PostgreSQL", urlRemedy);
    else
        findings.error(url->place, "url \"" + url->text + "\" names no place for a history", urlRemedy);
}

void readKeep(TomlTable& table, HistorySettings& settings, Findings& findings) {
    const std::optional<Field> keep = table.text("keep", keepRemedy);
    if (!keep)
        return;
    if (!timeSpanFault(keep->text).empty())
        findings.error(keep->place, "keep \"" + keep->text + "\" is no time above 0", keepRemedy);
    settings.keep = parseTimeSpan(keep->text).value_or(settings.keep);
}

void readMaxSize(TomlTable& table, HistorySettings& settings, Findings& findings) {
    const std::optional<Field> size = table.text("max_size", sizeRemedy);
    if (!size)
        return;
    const std::optional<std::uint64_t> bytes = parseByteSize(size->text);
    if (!bytes || *bytes < HistorySettings::leastSize)
        findings.error(size->place, "max_size \"" + size->text + "\" is no size from 1 MB on", sizeRemedy);
    settings.maxSize = bytes.value_or(settings.maxSize);
}

} // namespace

std::optional<HistorySettings> readHistoryTable(TomlTable& root, const std::string& file,
                                                Findings& findings) {
    const toml::table* const source = root.subTable("history");
    if (source == nullptr)
        return std::nullopt;
    TomlTable table(*source, file, findings);
    HistorySettings settings;
    settings.place = table.place();
    settings.place.file = file;
    readUrl(table, settings, findings);
    readKeep(table, settings, findings);
    readMaxSize(table, settings, findings);
    table.rejectUnknownKeys();
    return settings;
}

} // namespace host
