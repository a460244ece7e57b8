#include "DamagedHistory.h"

#include "HistoryFile.h"

#include <QDateTime>

#include <filesystem>
#include <fstream>

namespace host {

namespace fs = std::filesystem;

namespace {

// The beginning of every file of SQLite, and where in it the application's number stands, highest byte first.
const std::string magic("SQLite format 3\0", 16);
constexpr std::size_t headerSize = 100;
constexpr std::size_t applicationAt = 68;

} // namespace

bool wasHistory(const std::string& path) {
    std::ifstream file(fs::u8path(path), std::ios::binary);
    std::string header(headerSize, '\0');
    if (!file.read(header.data(), static_cast<std::streamsize>(header.size())))
        return false;
    std::uint32_t application = 0;
    for (std::size_t i = 0; i < 4; ++i)
        application = application << 8 | static_cast<unsigned char>(header[applicationAt + i]);
    return header.compare(0, magic.size(), magic) == 0 && application == historyschema::applicationId;
}

std::string moveAside(const std::string& path, std::int64_t timeMs) {
    const QDateTime time = QDateTime::fromMSecsSinceEpoch(timeMs, Qt::UTC);
    std::string aside =
        path + ".damaged-" + time.toString(QStringLiteral("yyyyMMdd'T'HHmmss'Z'")).toStdString();
    std::error_code failure;
    // The logs first: left behind, they would be taken for those of the next file.
    for (const char* const part : {"-wal", "-shm", ""}) {
        const fs::path from = fs::u8path(path + part);
        if (fs::exists(from, failure))
            fs::rename(from, fs::u8path(aside + part), failure);
        if (failure)
            return {};
    }
    return aside;
}

} // namespace host
