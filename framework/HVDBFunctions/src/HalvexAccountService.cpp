#include <HVDBFunctions/HalvexAccountService.h>

HalvexAccountService* HalvexAccountService::instance() {
    static HalvexAccountService service;
    return &service;
}
