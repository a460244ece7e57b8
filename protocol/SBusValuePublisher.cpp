#include "SBusValuePublisher.h"

SBusValuePublisher::~SBusValuePublisher() = default;
