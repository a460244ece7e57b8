#include "ArgumentFaults.h"

#include "site/LinkUrl.h"
#include "site/Number.h"

namespace host {

std::string faultText(const std::string& what, const std::string& remedy) {
    return what.empty() ? "" : what + "; " + remedy;
}

// All faults, one a line.
std::string linkFault(const std::string& text) {
    std::string all;
    for (const LinkFault& fault : parseLinkUrl(text).faults)
        all += (all.empty() ? "" : "\n") + faultText(fault.what, fault.remedy);
    return all;
}

std::string breakDelayFault(const std::string& text) {
    constexpr unsigned longestBreakMs = 1'000;
    return parseNumber(text, 0, longestBreakMs)
               ? ""
               : "\"" + text + "\" is no number of milliseconds from 0 to 1000";
}

} // namespace host
