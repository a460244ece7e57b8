#include "StateDirectory.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>

#include <utility>

namespace host {

namespace {

constexpr int hashDigits = 24; // 96 bits: no two sites of one user meet by chance

} // namespace

std::string stateDirectory(const std::string& directory) {
    if (!directory.empty())
        return directory;
    for (const auto& [variable, below] : {std::pair{"XDG_STATE_HOME", ""}, std::pair{"LOCALAPPDATA", ""},
                                          std::pair{"HOME", "/.local/state"}}) {
        const QString usual = qEnvironmentVariable(variable);
        if (!usual.isEmpty() && QDir::isAbsolutePath(usual))
            return usual.toStdString() + below;
    }
    return {};
}

std::string realSitePath(const std::string& siteFile) {
    const QFileInfo file(QString::fromStdString(siteFile));
    return (file.exists() ? file.canonicalFilePath() : file.absoluteFilePath()).toStdString();
}

std::string stateFileName(const std::string& kind, const std::string& realSitePath,
                          const std::string& ending) {
    const QByteArray hash =
        QCryptographicHash::hash(QByteArray::fromStdString(realSitePath), QCryptographicHash::Sha256).toHex();
    return kind + "-" + hash.left(hashDigits).toStdString() + ending;
}

} // namespace host
