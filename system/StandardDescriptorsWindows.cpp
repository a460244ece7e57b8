#include "StandardDescriptors.h"

// The numbers of files that are opened later never are those of the standard streams.
void openClosedStandardDescriptors() {}
