#include "PipeNameWindows.h"

#include <QString>

namespace host {

bool isPipe(const std::string& path) {
    return path.rfind(pipeFolder, 0) == 0;
}

// Behind its folder, a pipe's name holds no backslash.
std::wstring pipeName(const std::string& path) {
    if (isPipe(path))
        return QString::fromStdString(path).toStdWString();
    QString name = QString::fromStdString(path);
    name.replace(QLatin1Char('\\'), QLatin1Char('/'));
    return (QString::fromLatin1(pipeFolder) + name).toStdWString();
}

} // namespace host
