#include "StandardTexts.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <shellapi.h>

namespace {

std::string utf8(const wchar_t* wide) {
    const int size = WideCharToMultiByte(CP_UTF8, 0, wide, -1, nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide, -1, text.data(), size, nullptr, nullptr);
    text.resize(text.size() - 1); // without the null at the end
    return text;
}

} // namespace

StandardTexts::StandardTexts() : codePageBefore(GetConsoleOutputCP()) {
    SetConsoleOutputCP(CP_UTF8);
    for (const int descriptor : {1, 2})
        _setmode(descriptor, _O_BINARY);
}

// The console belongs to others, too.
StandardTexts::~StandardTexts() {
    SetConsoleOutputCP(codePageBefore);
}

// main's own arguments are in the user's code page, which lacks most letters.
ProgramArguments::ProgramArguments(int count, char** values) {
    int wideCount = 0;
    wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &wideCount);
    for (int i = 0; i < (wide == nullptr ? count : wideCount); ++i)
        texts.push_back(wide == nullptr ? std::string(values[i]) : utf8(wide[i]));
    LocalFree(wide);
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    number = static_cast<int>(texts.size());
}
