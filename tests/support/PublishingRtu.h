#pragma once

#include <SBusPublishingRtu.h>

#include <QDateTime>
#include <QStringList>

#include <functional>

// An RTU that remembers what the engine handed over, and puts each value into its point whose number is
// the element's number, if it has such a point. Not thread-safe.
class PublishingRtu : public SBusPublishingRtu {
public:
    using SBusPublishingRtu::SBusPublishingRtu;

    void publishStatusValues(quint32 start, const QString& media, const QList<quint8>& bits) override {
        remember(QStringLiteral("status"), start, media, bits);
        for (int i = 0; i < bits.size(); ++i)
            PutStatusPoint(false, start + static_cast<quint32>(i), static_cast<char>(bits[i]), 0, now(),
                           true);
    }

    void publishAnalogValues(quint32 start, const QString& media, const QList<int>& words) override {
        remember(QStringLiteral("analog"), start, media, words);
        for (int i = 0; i < words.size(); ++i)
            PutAnalogPoint(false, start + static_cast<quint32>(i), words[i], 0, now());
    }

    // "analog R10: 7 -2": kind, media and first element, values.
    QStringList handedOver;
    // Every value of every hand-over, in order.
    QList<int> allValues;
    std::function<void()> duringHandOver = [] {};

private:
    template <typename Value>
    void remember(const QString& kind, quint32 start, const QString& media, const QList<Value>& received) {
        QStringList texts;
        for (const Value value : received) {
            texts << QString::number(value);
            allValues << static_cast<int>(value);
        }
        handedOver << QStringLiteral("%1 %2%3: %4").arg(kind, media).arg(start).arg(texts.join(' '));
        duringHandOver();
    }

    static CMidTime now() { return CMidTime(QDateTime::currentDateTime(), 0); }
};
