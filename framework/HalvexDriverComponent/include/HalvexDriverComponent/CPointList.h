#pragma once

#include <HalvexDriverComponent/AnalogPoint.h>
#include <HalvexDriverComponent/Export.h>
#include <HalvexDriverComponent/StatusPoint.h>

#include <QMap>

#include <memory>

// The points of one RTU, by number. Owns them; a pointer stays good until its point is removed.
// Filled before the channel's thread starts. While it runs the list is only read, and only the driver changes
// address fields; a PollTaker alone may fill it anew, between two turns of the channel, and only as long as
// no other thread gives the RTU a command.
class HALVEXDRIVERCOMPONENT_EXPORT CPointList {
public:
    CPointList();
    CPointList(const CPointList&) = delete;
    CPointList& operator=(const CPointList&) = delete;
    ~CPointList();

    // A point with the number of an earlier one replaces it.
    StatusPoint* AddStatusPoint(const StatusPoint& point);
    AnalogPoint* AddAnalogPoint(const AnalogPoint& point);
    void Clear();

    // Null when there is none.
    StatusPoint* GetStatusPoint(unsigned number) const;
    AnalogPoint* GetAnalogPoint(unsigned number) const;

    const QMap<unsigned, StatusPoint*>& GetStatusPointList() const { return statusPoints; }
    const QMap<unsigned, AnalogPoint*>& GetAnalogPointList() const { return analogPoints; }

    // Gives every point the address texts with which it was added.
    void RestoreStatusPoints();
    void RestoreAnalogPoints();

private:
    friend class CRtu; // looks a point up for every value that is put
    struct Stores;

    QMap<unsigned, StatusPoint*> statusPoints;
    QMap<unsigned, AnalogPoint*> analogPoints;
    const std::unique_ptr<Stores> stores; // where the points are
};
