#pragma once

#include <HalvexAbstractDriver/Export.h>
#include <HalvexDriverComponent/EScan.h>

#include <QWidget>

// A page that a driver adds to the host's device dialog. GUI thread only. The dialog owns the page; the
// scan record stays the dialog's and outlives the page's use of it.
class HALVEXABSTRACTDRIVER_EXPORT DeviceOptionWidgetInterface : public QWidget {
    Q_OBJECT

public:
    explicit DeviceOptionWidgetInterface(QWidget* parent = nullptr);
    ~DeviceOptionWidgetInterface() override;

    // The dialog's first call: shows the record. The base hands it to loadScan.
    virtual void initPage(EScan* scan);
    // Shows `scan` and edits it from then on. The base shows nothing.
    virtual void loadScan(EScan* scan);
    // Asked before the dialog accepts: false keeps it open and shows `message`. The base agrees.
    virtual bool slotOK(QString& message);
};
