#include "ReadItems.h"

#include "MediaTable.h"

#include <iterator>

namespace sbus {
namespace {

// The elements of the telegram that is being collected. Empty between telegrams.
struct Run {
    int start = 0;
    int length = 0;

    bool isOpen() const { return length > 0; }
};

SBusRequestItem readItem(quint32 command, int start, int count) {
    return {command, static_cast<quint32>(count), static_cast<quint32>(start), {}};
}

} // namespace

QList<SBusRequestItem> buildReadItems(const QString& media, const MediaAddressSet& elements) {
    constexpr quint32 clearedCommand = 0; // the command of an item that was given none
    const quint32 command = readCommandForMedia(media);
    const int limit = readLimitForMedia(media);
    QList<SBusRequestItem> items;
    Run run;
    for (auto entry = elements.cbegin(); entry != elements.cend(); ++entry) {
        const int address = entry.key();
        const int length = entry.value() == 0 ? 1 : entry.value();
        const auto next = std::next(entry);
        const bool isLast = next == elements.cend();
        const bool nextFollows = !isLast && next.key() == address + length;
        const int total = run.length + length;

        if (!run.isOpen()) {
            run = {address, length};
            if (!nextFollows) {
                items.append(readItem(command, address, length - 1));
                run = {};
            }
        } else if (isLast && total >= limit) {
            items.append(readItem(clearedCommand, run.start, run.length - 1));
            items.append(readItem(command, address, length));
        } else if (total >= limit) {
            items.append(readItem(command, run.start, run.length - 1));
            run = {address, length}; // the next entry joins it whatever its number is
        } else if (nextFollows) {
            run.length = total;
        } else {
            items.append(readItem(command, run.start, total - 1));
            run = {};
        }
    }
    return items;
}

} // namespace sbus
