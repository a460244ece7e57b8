#pragma once

#include <PlainDriver.h>

// A driver plug-in that serves every line type and makes no channel.
class EmptyHandedDriver final : public PlainDriver {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID HALVEX_DRIVER_PLUGIN_IID FILE "EmptyHandedDriver.json")
};
