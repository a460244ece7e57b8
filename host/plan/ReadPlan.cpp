#include "ReadPlan.h"

#include <algorithm>

namespace host {

namespace {

struct Run {
    unsigned first;
    unsigned last;

    std::size_t length() const { return std::size_t{last} - first + 1; }
};

std::vector<Run> runsOf(const std::set<unsigned>& elements) {
    std::vector<Run> runs;
    for (const unsigned element : elements) {
        if (!runs.empty() && runs.back().last + 1 == element)
            runs.back().last = element;
        else
            runs.push_back({element, element});
    }
    return runs;
}

// Joins `run` with those of `settled` that it touches.
void joinBackwards(std::vector<Run>& settled, Run& run) {
    while (!settled.empty() && settled.back().last + 1 == run.first) {
        run.first = settled.back().first;
        settled.pop_back();
    }
}

} // namespace

unsigned readLimit(char media) {
    return media == 'T' || media == 'C' ? 32 : 128;
}

bool isCriticalRunLength(char media, std::size_t length) {
    return length > 1 && (length - 1) % (readLimit(media) - 1) == 0;
}

std::vector<unsigned> hiddenElements(char media, const std::set<unsigned>& elements) {
    std::vector<unsigned> hidden;
    std::vector<Run> settled;
    for (Run run : runsOf(elements)) {
        // An element put behind the run before may touch this one.
        joinBackwards(settled, run);
        // Ends at the latest with all 65,536 elements in one run, whose length is not critical.
        while (isCriticalRunLength(media, run.length())) {
            if (run.last < highestElement) {
                hidden.push_back(++run.last);
            } else {
                hidden.push_back(--run.first);
                joinBackwards(settled, run);
            }
        }
        settled.push_back(run);
    }
    return hidden;
}

std::vector<ReadTelegram> planTelegrams(char media, const std::set<unsigned>& elements) {
    const unsigned most = readLimit(media) - 1;
    std::vector<ReadTelegram> telegrams;
    for (const Run& run : runsOf(elements))
        for (unsigned first = run.first; first <= run.last; first += most)
            telegrams.push_back({media, first, std::min(most, run.last - first + 1)});
    return telegrams;
}

namespace {

std::vector<ReadTelegram>& telegramsOf(ReadShare& share, char media) {
    return isBitMedia(media) ? share.status : share.analog;
}

void append(std::vector<ReadTelegram>& telegrams, const std::vector<ReadTelegram>& more) {
    telegrams.insert(telegrams.end(), more.begin(), more.end());
}

RtuReadPlan planWhole(const Rtu& rtu) {
    RtuReadPlan plan;
    for (auto& [media, elements] : polledElements(rtu)) {
        std::set<unsigned> all = elements;
        for (const unsigned element : hiddenElements(media, elements)) {
            all.insert(element);
            plan.hidden.push_back({media, element});
        }
        append(telegramsOf(plan, media), planTelegrams(media, all));
    }
    return plan;
}

// Each telegram takes as much as it may, so that there are as few as possible.
std::vector<ReadTelegram> cutTelegrams(const Rtu& rtu, const RefusedReads& refused, char media,
                                       const std::set<unsigned>& elements) {
    const std::optional<unsigned> limit = isBitMedia(media) ? rtu.limits.readBits : rtu.limits.readWords;
    const unsigned most = std::min(limit.value_or(readLimit(media) - 1), readLimit(media) - 1);
    std::vector<ReadTelegram> telegrams;
    for (const unsigned element : elements) {
        if (refused.isAbsent({media, element}))
            continue;
        ReadTelegram* const open = telegrams.empty() ? nullptr : &telegrams.back();
        if (open != nullptr && element - open->last() - 1 <= rtu.limits.gap && element - open->first < most &&
            refused.mayJoin(media, open->last(), element))
            open->count = element - open->first + 1;
        else
            telegrams.push_back({media, element, 1});
    }
    return telegrams;
}

bool touchesLast(const std::vector<ReadTelegram>& telegrams, const ReadTelegram& next) {
    return !telegrams.empty() && telegrams.back().media == next.media &&
           telegrams.back().last() + 1 == next.first;
}

RtuReadPlan planCut(const Rtu& rtu, const RefusedReads& refused) {
    RtuReadPlan plan;
    for (const auto& [media, elements] : polledElements(rtu))
        for (const ReadTelegram& telegram : cutTelegrams(rtu, refused, media, elements)) {
            ReadShare& share = touchesLast(telegramsOf(plan, media), telegram) ? plan.second : plan;
            telegramsOf(share, media).push_back(telegram);
            for (unsigned element = telegram.first; element <= telegram.last(); ++element)
                if (elements.count(element) == 0)
                    share.hidden.push_back({media, element});
        }
    return plan;
}

} // namespace

bool hasReadLimits(const Rtu& rtu) {
    return rtu.limits.readWords || rtu.limits.readBits || rtu.limits.gap > 0;
}

RtuReadPlan planReads(const Rtu& rtu, const RefusedReads& refused) {
    return hasReadLimits(rtu) || !refused.isEmpty() ? planCut(rtu, refused) : planWhole(rtu);
}

std::map<char, std::set<unsigned>> polledElements(const Rtu& rtu) {
    std::map<char, std::set<unsigned>> elementsOfMedia;
    for (const Point& point : rtu.points)
        if (point.isPolled)
            elementsOfMedia[point.address.media].insert(point.address.number);
    return elementsOfMedia;
}

std::string toText(const ReadTelegram& telegram) {
    const std::string first = toText(ElementAddress{telegram.media, telegram.first});
    return telegram.count > 1 ? first + ".." + std::to_string(telegram.last()) : first;
}

std::vector<ReadTelegram> allTelegrams(const ReadShare& share) {
    std::vector<ReadTelegram> telegrams = share.status;
    append(telegrams, share.analog);
    return telegrams;
}

} // namespace host
