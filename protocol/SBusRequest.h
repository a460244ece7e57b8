#pragma once

#include "SBusRequestItem.h"

#include <QList>
#include <QString>

class CReply;
class SBusPublishingRtu;

// What is asked of one RTU: telegrams to exchange in order, and who waits for the outcome. A value: a copy
// has its own items and shares `rtu` and `reply`, which it does not own.
class SBusRequest {
public:
    SBusRequest() = default;
    SBusRequest(const SBusRequest&) = default;
    SBusRequest& operator=(const SBusRequest&) = default;
    SBusRequest(SBusRequest&&) = default;
    SBusRequest& operator=(SBusRequest&&) = default;
    virtual ~SBusRequest();

    // The same RTU, label and number of telegrams. What the telegrams hold is not compared.
    bool isEqualTo(const SBusRequest& other) const;

    SBusPublishingRtu* rtu = nullptr;
    QString name;
    QList<SBusRequestItem> items;
    CReply* reply = nullptr;
};
