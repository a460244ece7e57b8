#pragma once

#include "SaiaSerialDeviceOption.h"

#include <HVDBFunctions/HalvexAccountService.h>

#include <gtest/gtest.h>

#include <QComboBox>
#include <QLabel>
#include <QSpinBox>

// A new page, its widgets found by their names, and a user with edit rights.
class OptionPage : public testing::Test {
public:
    ~OptionPage() override { HalvexAccountService::instance()->setEditDatabase(true); }

protected:
    OptionPage() { HalvexAccountService::instance()->setEditDatabase(true); }
    static EScan record(const char* station, const char* transmitType, const char* breakDelay) {
        return {QString::fromLatin1(station), QString::fromLatin1(transmitType),
                QString::fromLatin1(breakDelay)};
    }

    SaiaSerialDeviceOption page{nullptr};
    QSpinBox* const addr = page.findChild<QSpinBox*>(QStringLiteral("addr"));
    QComboBox* const mode = page.findChild<QComboBox*>(QStringLiteral("mode"));
    QSpinBox* const delay = page.findChild<QSpinBox*>(QStringLiteral("delay"));
};
