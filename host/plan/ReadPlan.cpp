#include "ReadPlan.h"

#include <algorithm>
#include <map>

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

RtuReadPlan planReads(const Rtu& rtu) {
    std::map<char, std::set<unsigned>> elementsOfMedia; // in the driver's order of media
    for (const Point& point : rtu.points)
        if (point.isPolled)
            elementsOfMedia[point.address.media].insert(point.address.number);

    RtuReadPlan plan;
    for (auto& [media, elements] : elementsOfMedia) {
        for (const unsigned element : hiddenElements(media, elements)) {
            elements.insert(element);
            plan.hidden.push_back({media, element});
        }
        std::vector<ReadTelegram>& telegrams = isBitMedia(media) ? plan.status : plan.analog;
        const std::vector<ReadTelegram> more = planTelegrams(media, elements);
        telegrams.insert(telegrams.end(), more.begin(), more.end());
    }
    return plan;
}

std::vector<ReadTelegram> allTelegrams(const RtuReadPlan& plan) {
    std::vector<ReadTelegram> all = plan.status;
    all.insert(all.end(), plan.analog.begin(), plan.analog.end());
    return all;
}

} // namespace host
