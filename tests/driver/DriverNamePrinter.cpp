#include <HalvexAbstractDriver/DriverPluginInterface.h>

#include <QCoreApplication>
#include <QLocale>
#include <QPluginLoader>

#include <cstdio>

// driver_name_printer PLUGIN: prints the driver's name in the language of the system. The program's own
// language is another one, German.
int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    QPluginLoader loader(QCoreApplication::arguments().value(1));
    auto* driver = qobject_cast<DriverPluginInterface*>(loader.instance());
    if (driver == nullptr) {
        std::fprintf(stderr, "%s\n", qPrintable(loader.errorString()));
        return 1;
    }
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    driver->loadTranslator();
    std::printf("%s\n", driver->driverName().toUtf8().constData());
    return 0;
}
