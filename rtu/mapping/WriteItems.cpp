#include "WriteItems.h"

#include "MediaTable.h"

#include <iterator>

namespace sbus {
namespace {

constexpr quint32 longestRun = 31; // values

// The values of the telegram that is being collected. Empty between telegrams.
struct Run {
    int start = 0;
    quint32 length = 0;
    QByteArray data;

    bool isEmpty() const { return length == 0; }
    bool isFull() const { return length == longestRun; }
    void add(int element, const QByteArray& value) {
        if (isEmpty())
            start = element;
        ++length;
        data += value;
    }
};

SBusRequestItem itemOf(quint32 command, int address, quint32 count, const QByteArray& data) {
    return {command, count, static_cast<quint32>(address), data};
}

} // namespace

SBusRequestItem writeItem(const QString& media, int address, quint32 count, const QByteArray& data) {
    SBusRequestItem item = itemOf(0, address, count, data);
    writeCommandForMedia(item.command, media);
    return item;
}

QList<SBusRequestItem> buildWriteItems(quint32 command, const DataByElement& elements) {
    QList<SBusRequestItem> items;
    Run run;
    const auto endTelegram = [&](quint32 count) {
        items.append(itemOf(command, run.start, count, run.data));
        run = {};
    };
    for (auto element = elements.cbegin(); element != elements.cend(); ++element) {
        const auto next = std::next(element);
        const bool isLast = next == elements.cend();
        const bool nextFollows = !isLast && next.key() == element.key() + 1;
        const bool beginsAfterGap = run.isEmpty();
        const bool beginsAfterCut = run.isFull();

        if (beginsAfterCut)
            endTelegram(run.length);
        run.add(element.key(), element.value());
        if (beginsAfterGap && isLast)
            endTelegram(0);
        else if (isLast || !(nextFollows || beginsAfterCut))
            endTelegram(run.length);
    }
    return items;
}

} // namespace sbus
