#include "SocketName.h"

#include <QCryptographicHash>
#include <QFileInfo>

namespace host {

namespace {

// A socket's path has room for some hundred bytes all in all.
constexpr int longestStem = 24;
constexpr int hashDigits = 12; // 48 bits: no two sites of one user meet by chance

} // namespace

std::string socketName(const std::string& sitePath) {
    const QFileInfo site(QString::fromStdString(sitePath));
    const QString real = site.exists() ? site.canonicalFilePath() : site.absoluteFilePath();
    QString stem;
    for (const QChar letter : QFileInfo(real).completeBaseName().left(longestStem))
        stem += letter.unicode() < 0x80 && letter.isLetterOrNumber() ? letter : QLatin1Char('-');
    const QByteArray hash = QCryptographicHash::hash(real.toUtf8(), QCryptographicHash::Sha256).toHex();
    return (stem + QLatin1Char('-') + QString::fromLatin1(hash.left(hashDigits))).toStdString();
}

} // namespace host
