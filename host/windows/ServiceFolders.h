#pragma once

#include <string>

// The folders that a service of Windows needs, made by the administrator who installs it: administrators may
// change all in them, and the service's own account what it writes; nobody else gets in.
namespace host::servicefolders {

// Where a service remembers what pulses.
std::string stateFolderOf(const std::string& serviceName);

// Empty, or why the folder cannot be had so. The ones on the way to it are the administrators' alone.
std::string makeStateFolder(const std::string& serviceName);
// Unless something was left in it.
void removeStateFolder(const std::string& serviceName);

// Makes a folder that is not there; one that is there keeps its rights. False in `isNew` for that one.
struct Made {
    bool isNew = false;
    std::string fault;
};
Made makeLogFolder(const std::string& path, const std::string& serviceName);

} // namespace host::servicefolders
