#pragma once

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

// A folder of its own for each test, gone after it.
class TemporaryFolder {
public:
    TemporaryFolder()
        : folder(std::filesystem::temp_directory_path() / ("simulator-" + std::to_string(number()))) {
        std::filesystem::create_directories(folder);
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::string path(const std::string& name) const { return (folder / name).string(); }
    std::string write(const std::string& name, const std::string& text) const {
        std::ofstream(path(name)) << text;
        return path(name);
    }

private:
    static unsigned long long number() {
        return std::random_device()() * 0x100000000ULL + std::random_device()();
    }
    const std::filesystem::path folder;
};
