#include "Output.h"

#include "ChangeText.h"
#include "StreamOutput.h"
#include "TableOutput.h"

namespace host {

std::unique_ptr<Output> makeOutput(OutputFormat format, const std::string& title, ValueStore& store,
                                   FiguresSource figures) {
    switch (format) {
    case OutputFormat::Table:
        return std::make_unique<TableOutput>(title, store, std::move(figures));
    case OutputFormat::Json:
        return std::make_unique<StreamOutput>(store, changeAsJson, "");
    case OutputFormat::Csv:
        return std::make_unique<StreamOutput>(store, changeAsCsv, changeCsvHeader);
    case OutputFormat::Lines:
        break;
    }
    return std::make_unique<StreamOutput>(store, changeAsLine, "");
}

} // namespace host
