#include "Output.h"

#include "StreamOutput.h"
#include "TableOutput.h"
#include "values/ChangeText.h"

namespace host {

namespace {

// For who reads no values: messages alone.
class MessagesOutput : public StreamOutput {
public:
    MessagesOutput(Console& console, const ValueStore& valueStore)
        : StreamOutput(console, valueStore, makeLineText(), "") {}

    bool update() override { return true; }
    void finish() override {}
};

} // namespace

std::unique_ptr<Output> makeOutput(OutputFormat format, Console& console, const std::string& title,
                                   const ValueStore& store, FiguresSource figures) {
    switch (format) {
    case OutputFormat::Table:
        return std::make_unique<TableOutput>(console, title, store, std::move(figures));
    case OutputFormat::Json:
        return std::make_unique<StreamOutput>(console, store, makeJsonText(), "");
    case OutputFormat::Csv:
        return std::make_unique<StreamOutput>(console, store, makeCsvText(), changeCsvHeader);
    case OutputFormat::Messages:
        return std::make_unique<MessagesOutput>(console, store);
    case OutputFormat::Lines:
        break;
    }
    return std::make_unique<StreamOutput>(console, store, makeLineText(), "");
}

} // namespace host
