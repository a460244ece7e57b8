#include "StateFile.h"

#include <SystemText.h>

#include <QFile>
#include <QSaveFile>

#include <filesystem>
#include <utility>

// Folders below the user's own are closed to others by the system. Two hosts are kept apart by the control
// socket alone.
namespace host {

StateFile::StateFile(std::string baseDirectory, std::string fileName)
    : base(std::move(baseDirectory)), folder(base + "/sbus-host"), name(std::move(fileName)) {}

StateFile::~StateFile() = default;

bool StateFile::isThere() const {
    return QFile::exists(QString::fromStdString(path()));
}

std::string StateFile::open() {
    std::error_code failure;
    std::filesystem::create_directories(std::filesystem::u8path(folder), failure);
    lock = 0;
    return failure ? "directory " + folder + " cannot be made: " + text::systemText(failure) : std::string();
}

StateFile::Contents StateFile::read() const {
    QFile file(QString::fromStdString(path()));
    if (!file.exists())
        return {};
    if (!file.open(QIODevice::ReadOnly))
        return {{}, path() + " cannot be read: " + file.errorString().toStdString()};
    return {file.readAll().toStdString(), {}};
}

std::string StateFile::replace(const std::string& text) {
    if (text.empty())
        return !isThere() || QFile::remove(QString::fromStdString(path())) ? std::string()
                                                                           : path() + " cannot be removed";
    QSaveFile file(QString::fromStdString(path()));
    if (file.open(QIODevice::WriteOnly) && file.write(QByteArray::fromStdString(text)) >= 0 && file.commit())
        return {};
    return path() + " cannot be written: " + file.errorString().toStdString();
}

} // namespace host
