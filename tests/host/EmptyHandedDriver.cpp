#include "EmptyHandedDriver.h"
