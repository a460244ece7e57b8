#include "StateFile.h"

#include "runtime/OwnFolderWindows.h"

#include <QFile>
#include <QSaveFile>

#include <QDir>

#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <sys/stat.h>
#include <utility>

namespace host {

StateFile::StateFile(std::string baseDirectory, std::string fileName)
    : base(std::move(baseDirectory)), folder(base + "/sbus-host"), name(std::move(fileName)) {}

StateFile::~StateFile() {
    if (lock >= 0)
        _close(lock);
}

bool StateFile::isThere() const {
    return QFile::exists(QString::fromStdString(path()));
}

std::string StateFile::open() {
    if (!QDir().mkpath(QString::fromStdString(base)))
        return "directory " + base + " cannot be made";
    std::string fault = makeOwnFolder(folder);
    if (!fault.empty())
        return fault;
    // The system shares the lock's file with nobody, and removes it when it is closed.
    const std::wstring lockPath = QString::fromStdString(path() + ".lock").toStdWString();
    const errno_t failure =
        _wsopen_s(&lock, lockPath.c_str(), _O_CREAT | _O_RDWR | _O_BINARY | _O_NOINHERIT | _O_TEMPORARY,
                  _SH_DENYRW, _S_IREAD | _S_IWRITE);
    if (failure == 0)
        return {};
    lock = -1;
    return failure == EACCES ? "another sbus-host uses " + path() : path() + ".lock cannot be opened";
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
