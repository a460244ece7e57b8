#include "SystemText.h"

#include <windows.h>

namespace text {

std::string systemText(const std::error_code& error) {
    const std::string message = error.message();
    const auto length = static_cast<int>(message.size());
    std::wstring wide(message.size(), L'\0');
    const int letters = MultiByteToWideChar(CP_ACP, 0, message.data(), length, wide.data(), length);
    std::string utf8(4 * message.size(), '\0');
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, wide.data(), letters, utf8.data(),
                                          static_cast<int>(utf8.size()), nullptr, nullptr);
    utf8.resize(static_cast<std::size_t>(bytes));
    return utf8;
}

} // namespace text
