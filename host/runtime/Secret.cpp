#include "Secret.h"

#include <TextFile.h>

#include <cstdint>
#include <cstdlib>

namespace host {

namespace {

constexpr std::uintmax_t longestSecret = 65'536; // bytes; keys and certificates take a few thousand

void cutLineEnd(std::string& text) {
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r'))
        text.pop_back();
}

Secret fromVariable(const std::string& name) {
    const char* const value = std::getenv(name.c_str());
    if (value == nullptr || *value == '\0')
        return {std::nullopt,
                "the variable " + name + " of the environment is not set; set it for the host's process"};
    return {value, {}};
}

Secret fromFile(const std::string& path) {
    if (std::string fault = findSecretFileFault(path); !fault.empty())
        return {std::nullopt, std::move(fault)};
    text::FileText file = text::readTextFile(path, longestSecret);
    if (!file.contents)
        return {std::nullopt, "the file \"" + path + "\" " + file.fault + "; check its path and its owner"};
    cutLineEnd(*file.contents);
    if (file.contents->empty())
        return {std::nullopt, "the file \"" + path + "\" holds nothing; write the secret into it"};
    return {std::move(file.contents), {}};
}

} // namespace

Secret readSecret(const SecretSource& source) {
    return source.file.empty() ? fromVariable(source.variable) : fromFile(source.file);
}

} // namespace host
