#include "SBusPublishingRtu.h"

SBusPublishingRtu::~SBusPublishingRtu() = default;
