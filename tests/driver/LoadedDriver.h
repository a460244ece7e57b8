#pragma once

#include <HalvexAbstractDriver/DriverPluginInterface.h>

#include <gtest/gtest.h>

#include <QPluginLoader>

// The plug-in as a host has it: loaded from its file, with a driver that no test before has touched.
class LoadedDriver : public testing::Test {
public:
    ~LoadedDriver() override { delete loader.instance(); }

protected:
    static constexpr int serial = 94021;
    static constexpr int ethernet = 94022;

    void SetUp() override { ASSERT_NE(driver, nullptr) << qPrintable(loader.errorString()); }

    QPluginLoader loader{QStringLiteral(PLUGIN_FILE)};
    DriverPluginInterface* const driver = qobject_cast<DriverPluginInterface*>(loader.instance());
};
