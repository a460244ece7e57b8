#pragma once

#include <QPluginLoader>

#include <memory>
#include <string>

class DriverPluginInterface;

namespace host {

// The driver plug-in: loaded through Qt's plug-in loader, checked by its metadata before any of its code runs
// for the host. Owns the driver object. Main thread.
class DriverPlugin {
public:
    DriverPlugin() = default;
    DriverPlugin(const DriverPlugin&) = delete;
    DriverPlugin& operator=(const DriverPlugin&) = delete;
    ~DriverPlugin();

    // Empty when it is loaded, or what is wrong. An empty path: searched for.
    std::string load(const std::string& path);
    // Null unless loaded.
    DriverPluginInterface* driver() const { return loadedDriver; }
    // Ends and deletes the driver, then unloads its library. Nothing of the driver's may exist any more.
    void unload();

    // Beside the program, or where an installation puts it. Empty when it is in neither place.
    static std::string findPlugin();

private:
    std::unique_ptr<QPluginLoader> loader;
    DriverPluginInterface* loadedDriver = nullptr;
};

} // namespace host
