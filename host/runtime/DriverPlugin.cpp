#include "DriverPlugin.h"

#include <HalvexAbstractDriver/DriverPluginInterface.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

namespace host {

namespace {

const QString driverKey = QStringLiteral("SBusDriver");

#ifdef Q_OS_WIN
const QString pluginFileName = driverKey + QStringLiteral(".dll");
#else
const QString pluginFileName = driverKey + QStringLiteral(".so");
#endif

std::string metadataFault(const QJsonObject& metadata) {
    if (metadata.isEmpty())
        return "is no Qt plug-in";
    const QString iid = metadata.value(QStringLiteral("IID")).toString();
    if (iid != QStringLiteral(HALVEX_DRIVER_PLUGIN_IID))
        return "has the interface \"" + iid.toStdString() + "\" instead of \"" HALVEX_DRIVER_PLUGIN_IID "\"";
    const QJsonObject own = metadata.value(QStringLiteral("MetaData")).toObject();
    if (!own.value(QStringLiteral("Keys")).toArray().contains(driverKey))
        return "does not have the key \"" + driverKey.toStdString() + "\"";
    return {};
}

} // namespace

DriverPlugin::~DriverPlugin() {
    unload();
}

std::string DriverPlugin::findPlugin() {
    const QDir programDirectory(QCoreApplication::applicationDirPath());
    QStringList candidates{programDirectory.filePath(pluginFileName)};
    // SBUS_LIBRARY_DIRECTORY is lib, lib64 or lib/x86_64-linux-gnu, as the system has it.
    const QStringList libraryDirectories{QStringLiteral(SBUS_LIBRARY_DIRECTORY), QStringLiteral("lib"),
                                         QStringLiteral("lib64")};
    for (const QString& directory : libraryDirectories)
        candidates << programDirectory.filePath(
            QStringLiteral("../%1/sbusdriver/%2").arg(directory, pluginFileName));
    for (const QString& candidate : candidates)
        if (QFileInfo::exists(candidate))
            return QDir::cleanPath(candidate).toStdString();
    return {};
}

std::string DriverPlugin::load(const std::string& path) {
    const std::string file = path.empty() ? findPlugin() : path;
    if (file.empty())
        return "the driver plug-in " + pluginFileName.toStdString() +
               " lies neither beside the program nor in the library directory; name it with --plugin";
    const QString absolute = QFileInfo(QString::fromStdString(file)).absoluteFilePath();
    if (!QFileInfo::exists(absolute))
        return "plug-in " + file + " is not there; name the driver's file with --plugin";
    QFile probe(absolute);
    if (!probe.open(QIODevice::ReadOnly))
        return "plug-in " + file + " cannot be read: " + probe.errorString().toStdString();
    probe.close();
    loader = std::make_unique<QPluginLoader>(absolute);
    const std::string fault = metadataFault(loader->metaData());
    if (!fault.empty())
        return "plug-in " + file + " " + fault + "; name the driver's file with --plugin";
    loadedDriver = qobject_cast<DriverPluginInterface*>(loader->instance());
    if (loadedDriver == nullptr)
        return "plug-in " + file + " cannot be loaded: " + loader->errorString().toStdString();
    return {};
}

void DriverPlugin::unload() {
    if (loadedDriver != nullptr) {
        loadedDriver->fin();
        delete loadedDriver;
        loadedDriver = nullptr;
    }
    if (loader != nullptr && loader->isLoaded())
        loader->unload();
    loader.reset();
}

} // namespace host
