#pragma once

#include <HVDBFunctions/Export.h>

#include <atomic>

// What the user who is logged in may do. One service per process; any thread.
class HVDBFUNCTIONS_EXPORT HalvexAccountService {
public:
    static HalvexAccountService* instance();

    // Whether the configuration may be edited. True until the host says otherwise.
    bool isEditDatabase() const { return editDatabase.load(); }
    void setEditDatabase(bool allowed) { editDatabase.store(allowed); }

private:
    HalvexAccountService() = default;

    std::atomic<bool> editDatabase{true};
};
