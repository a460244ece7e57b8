#include <ZeroList.h>

#include <gtest/gtest.h>

namespace {

// The same, value by value.
template <typename Value>
QList<Value> referenceList(int size) {
    QList<Value> list;
    for (int i = 0; i < size; ++i)
        list.append(0);
    return list;
}

} // namespace

TEST(ZeroList, AgreesWithTheSimpleWayForEverySize) {
    for (int size = 0; size <= 300; ++size) {
        ASSERT_EQ(sbus::zeroList<quint8>(size), referenceList<quint8>(size)) << size;
        ASSERT_EQ(sbus::zeroList<qint32>(size), referenceList<qint32>(size)) << size;
    }
}

TEST(ZeroList, IsACopyThatChangesNoOther) {
    for (const int size : {1, 128, 200}) {
        QList<qint32> changed = sbus::zeroList<qint32>(size);
        for (qint32& value : changed)
            value = 7;
        EXPECT_EQ(sbus::zeroList<qint32>(size), referenceList<qint32>(size)) << size;
    }
}
