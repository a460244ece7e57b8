#pragma once

#include <string>

// Accounts of Windows, by their SIDs as text ("S-1-5-18"), and what is closed to all but a few of them. Any
// thread.
namespace host::accounts {

// Of the user as whom this process runs. Throws std::runtime_error when the system does not tell.
std::string ownSid();
// Of the owner, who has made it, of what is open; empty when the system does not tell.
std::string ownerOfPipe(void* pipe);
std::string ownerOfFile(void* file);
// "NT AUTHORITY\SYSTEM"; the SID itself where no name belongs to it.
std::string nameOf(const std::string& sid);
bool isSystemOrAdministrators(const std::string& sid);
// Whether it is the account of a service by which an administrator has sbus-host run.
bool isOfHostService(const std::string& sid);

// A security descriptor, for as long as it lives.
class Descriptor {
public:
    // From the system's text form. Throws std::runtime_error for one that is none.
    explicit Descriptor(const std::string& text);
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor();

    void* get() const { return descriptor; }

private:
    void* descriptor = nullptr;
};

// Of a pipe that its own user serves, and that SYSTEM and administrators may open besides; from no other
// computer.
std::string pipeForOwnUser();
// Of a folder that its own user, SYSTEM and administrators may use, with all that is made in it.
std::string folderForOwnUser();

} // namespace host::accounts
