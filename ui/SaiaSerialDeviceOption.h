#pragma once

#include <HalvexAbstractDriver/DeviceOptionWidgetInterface.h>

class QComboBox;
class QGridLayout;
class QLabel;
class QSpinBox;

// The page for an RTU on a serial line: station number, transmission mode, break delay. Each change goes
// into the scan record at once, without a step that saves it.
//
// States: without a record (as made), with one (from loadScan on). transmitTypeChanged and valueChanged need
// a record. GUI thread only. The dialog owns the record.
class SaiaSerialDeviceOption final : public DeviceOptionWidgetInterface {
    Q_OBJECT

public:
    explicit SaiaSerialDeviceOption(QWidget* parent);

    // Filling the widgets writes into the record while it is read. A station other than the one shown stores
    // the delay that is still shown, before the record's own delay is read.
    void loadScan(EScan* newScan) override;

public Q_SLOTS:
    void slaveAddressChanged(const QString& text);
    void transmitTypeChanged(int i);
    void delayChanged(const QString& text);
    void valueChanged(int value);

private:
    void setupForm();
    void addStationRow(QGridLayout* layout);
    void addModeRow(QGridLayout* layout);
    void addDelayRow(QGridLayout* layout, int spacing);
    void translateForm();

    QLabel* stationLabel = nullptr;
    QSpinBox* addr = nullptr;
    QLabel* modeLabel = nullptr;
    QComboBox* mode = nullptr;
    QLabel* delayLabel = nullptr;
    QSpinBox* delay = nullptr;
    QLabel* unitLabel = nullptr;
    EScan* scan = nullptr; // null until a record is loaded
};
