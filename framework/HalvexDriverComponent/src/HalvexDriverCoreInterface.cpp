#include <HalvexDriverComponent/HalvexDriverCoreInterface.h>

HalvexDriverCoreInterface::~HalvexDriverCoreInterface() = default;
