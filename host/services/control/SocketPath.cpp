#include "SocketPath.h"

#include "PrivateDirectory.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>

namespace host {

namespace {

// A socket's path has room for some hundred bytes all in all.
constexpr int longestStem = 24;
constexpr int hashDigits = 12; // 48 bits: no two sites of one user meet by chance

QString socketName(const std::string& sitePath) {
    const QFileInfo site(QString::fromStdString(sitePath));
    const QString real = site.exists() ? site.canonicalFilePath() : site.absoluteFilePath();
    QString stem;
    for (const QChar letter : QFileInfo(real).completeBaseName().left(longestStem))
        stem += letter.unicode() < 0x80 && letter.isLetterOrNumber() ? letter : QLatin1Char('-');
    const QByteArray hash = QCryptographicHash::hash(real.toUtf8(), QCryptographicHash::Sha256).toHex();
    return stem + QLatin1Char('-') + QString::fromLatin1(hash.left(hashDigits)) + QStringLiteral(".sock");
}

QStringList directories() {
    QStringList list;
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!runtime.isEmpty() && QFileInfo(runtime).isDir())
        list << runtime + QStringLiteral("/sbus-host");
    list << QDir::tempPath() + QStringLiteral("/sbus-host-") + QString::fromStdString(userTag());
    return list;
}

} // namespace

std::vector<std::string> controlSocketPaths(const std::string& sitePath) {
    std::vector<std::string> paths;
    for (const QString& directory : directories())
        paths.push_back((directory + QLatin1Char('/') + socketName(sitePath)).toStdString());
    return paths;
}

SocketPlace prepareControlSocketPlace(const std::string& sitePath) {
    SocketPlace place;
    for (const QString& directory : directories()) {
        const std::string fault = makePrivateDirectory(directory.toStdString());
        if (fault.empty())
            return {(directory + QLatin1Char('/') + socketName(sitePath)).toStdString(), {}};
        place.fault += (place.fault.empty() ? "" : "; ") + fault;
    }
    return place;
}

} // namespace host
