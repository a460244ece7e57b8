#pragma once

#include <string>

namespace host {

// A small file in a folder of this user's own, which is replaced as a whole: whoever reads it after a crash
// finds the text of one replace() or of the one before, never a mixture.
// Faults are texts that tell what happened; empty: all went well. One thread at a time.
class StateFile {
public:
    // Makes nothing yet.
    StateFile(std::string baseDirectory, std::string fileName);
    StateFile(const StateFile&) = delete;
    StateFile& operator=(const StateFile&) = delete;
    ~StateFile();

    std::string path() const { return folder + "/" + name; }
    bool isThere() const;

    // Makes the folder "sbus-host" in the base directory, which nobody else can enter, and takes the file for
    // this process until its end, however it ends. Fails where everybody may write to the base directory,
    // others could lead it elsewhere, or another process has taken the file.
    std::string open();

    struct Contents {
        std::string text;
        std::string fault;
    };
    // The text is empty when there is no file. One that is no plain file of this user's is a fault.
    Contents read() const;
    // The text is on the disk afterwards. An empty one removes the file.
    std::string replace(const std::string& text);

private:
    const std::string base;
    const std::string folder;
    const std::string name;
    int lock = -1; // descriptor of the file that says that this one is taken
};

} // namespace host
