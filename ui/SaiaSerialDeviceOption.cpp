#include "SaiaSerialDeviceOption.h"

#include <HVDBFunctions/HalvexAccountService.h>

#include <QComboBox>
#include <QCoreApplication>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QSpacerItem>
#include <QSpinBox>
#include <QVBoxLayout>

namespace {

QLabel* rightAlignedLabel(const char* name, QWidget* parent) {
    auto* const label = new QLabel(parent);
    label->setObjectName(QLatin1String(name));
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    return label;
}

QSpinBox* spinBox(const char* name, int maximum, int value, QWidget* parent) {
    auto* const box = new QSpinBox(parent);
    box->setObjectName(QLatin1String(name));
    box->setMaximum(maximum);
    box->setValue(value);
    return box;
}

} // namespace

SaiaSerialDeviceOption::SaiaSerialDeviceOption(QWidget* parent) : DeviceOptionWidgetInterface(parent) {
    setupForm();
    setWindowTitle(QCoreApplication::translate("SaiaSerialDeviceOption", "Protocol"));
    connect(addr, SIGNAL(valueChanged(int)), this, SLOT(valueChanged(int)));
    connect(delay, SIGNAL(valueChanged(int)), this, SLOT(valueChanged(int)));
    connect(mode, SIGNAL(currentIndexChanged(int)), this, SLOT(transmitTypeChanged(int)));
}

void SaiaSerialDeviceOption::setupForm() {
    constexpr int spacing = 6;
    constexpr int margin = 11;
    if (objectName().isEmpty())
        setObjectName(QStringLiteral("SaiaSerialDeviceOption"));
    resize(394, 200);

    auto* const verticalLayout = new QVBoxLayout(this);
    verticalLayout->setObjectName(QStringLiteral("verticalLayout"));
    verticalLayout->setSpacing(spacing);
    verticalLayout->setContentsMargins(margin, margin, margin, margin);
    auto* const gridLayout = new QGridLayout;
    gridLayout->setObjectName(QStringLiteral("gridLayout"));
    gridLayout->setSpacing(spacing);
    addStationRow(gridLayout);
    addModeRow(gridLayout);
    addDelayRow(gridLayout, spacing);
    verticalLayout->addLayout(gridLayout);
    verticalLayout->addItem(new QSpacerItem(20, 40, QSizePolicy::Minimum, QSizePolicy::Expanding));

    translateForm();
    QMetaObject::connectSlotsByName(this);
}

void SaiaSerialDeviceOption::addStationRow(QGridLayout* layout) {
    constexpr int highestStation = 256;
    constexpr int defaultStation = 1;
    stationLabel = rightAlignedLabel("label_2", this);
    addr = spinBox("addr", highestStation, defaultStation, this);
    addr->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    layout->addWidget(stationLabel, 0, 0);
    layout->addWidget(addr, 0, 1);
}

void SaiaSerialDeviceOption::addModeRow(QGridLayout* layout) {
    modeLabel = rightAlignedLabel("label_3", this);
    mode = new QComboBox(this);
    mode->setObjectName(QStringLiteral("mode"));
    mode->addItems({QString(), QString()});
    layout->addWidget(modeLabel, 1, 0);
    layout->addWidget(mode, 1, 1);
}

void SaiaSerialDeviceOption::addDelayRow(QGridLayout* layout, int spacing) {
    constexpr int longestDelayMs = 1000;
    constexpr int defaultDelayMs = 10;
    delayLabel = rightAlignedLabel("bl", this);
    delay = spinBox("delay", longestDelayMs, defaultDelayMs, this);
    unitLabel = new QLabel(this);
    unitLabel->setObjectName(QStringLiteral("msec"));
    auto* const horizontalLayout = new QHBoxLayout;
    horizontalLayout->setObjectName(QStringLiteral("horizontalLayout"));
    horizontalLayout->setSpacing(spacing);
    horizontalLayout->addWidget(delay);
    horizontalLayout->addWidget(unitLabel);
    layout->addWidget(delayLabel, 2, 0);
    layout->addLayout(horizontalLayout, 2, 1);
}

void SaiaSerialDeviceOption::translateForm() {
    setWindowTitle(QCoreApplication::translate("SaiaSerialDeviceOption", "SaiaSerialDeviceOption"));
    stationLabel->setText(QCoreApplication::translate("SaiaSerialDeviceOption", "Comm. Board Station No.:"));
    modeLabel->setText(QCoreApplication::translate("SaiaSerialDeviceOption", "S-Bus Protocol :"));
    mode->setItemText(0, QCoreApplication::translate("SaiaSerialDeviceOption", "Data Mode"));
    mode->setItemText(1, QCoreApplication::translate("SaiaSerialDeviceOption", "Break Mode"));
    delayLabel->setText(QCoreApplication::translate("SaiaSerialDeviceOption", "Break Delay Time :"));
    unitLabel->setText(QCoreApplication::translate("SaiaSerialDeviceOption", "(msec)"));
}

void SaiaSerialDeviceOption::loadScan(EScan* newScan) {
    scan = newScan;
    addr->setValue(scan->stationAddress.toInt(nullptr, 10));
    if (!HalvexAccountService::instance()->isEditDatabase())
        setEnabled(false);
    const int transmitType = scan->transmitType.toInt(nullptr, 10);
    mode->setCurrentIndex(transmitType);
    if (scan->breakDelay.isEmpty())
        scan->breakDelay = QStringLiteral("10");
    delay->setValue(scan->breakDelay.toInt(nullptr, 10));
    delay->setEnabled(transmitType != 0);
}

void SaiaSerialDeviceOption::slaveAddressChanged(const QString& text) {
    if (scan != nullptr)
        scan->stationAddress = text;
}

void SaiaSerialDeviceOption::transmitTypeChanged(int i) {
    scan->transmitType = QString::number(i);
    delay->setEnabled(i != 0);
}

void SaiaSerialDeviceOption::delayChanged(const QString& /*text*/) {}

void SaiaSerialDeviceOption::valueChanged(int /*value*/) {
    scan->breakDelay = QString::number(delay->value());
    scan->stationAddress = QString::number(addr->value());
}
