#pragma once

#include "Layout.h"
#include "Topics.h"
#include "values/TimeText.h"

namespace host {

// A topic for each point, with its value retained:
//   PREFIX/SITE/LINE/RTU/POINT             {"value":21.5,"unit":"m","quality":"good","time":"..."}
//   PREFIX/SITE/$state, .../LINE/$state, .../LINE/RTU/$state     {"state":"online","time":"..."}
//   PREFIX/SITE/LINE/RTU/POINT/set         a command, and its result at .../set/result
// The value of a point that is not good is null.
class PlainLayout : public Layout {
public:
    struct Settings {
        std::string prefix;
        std::string site;
        int qos = 1;
        bool takesCommands = false;
    };

    // The table outlives it.
    PlainLayout(Settings layoutSettings, const PointTable& pointTable);

    MqttMessage will(qint64 nowMs) override;
    std::vector<Subscription> subscriptions() const override;
    std::vector<MqttMessage> birth(qint64 nowMs) override;
    std::vector<MqttMessage> death(qint64 nowMs) override;
    bool wantsCurrentValues() const override { return true; }
    void tellLine(const Channel& channel, bool isConnected, qint64 nowMs,
                  std::vector<MqttMessage>& into) override;
    void tellRtu(const PointTable::Block& block, RtuCondition condition, qint64 nowMs,
                 std::vector<MqttMessage>& into) override;
    std::size_t tellChanges(const ToldChange* changes, std::size_t count, MqttMessage& into) override;
    MessageMeaning read(const MqttMessage& message) override;
    std::optional<MqttMessage> result(const CommandRequest& request, const CommandResult& result) override;

protected:
    // Appends "value":...,"unit":...,"quality":...,"time":...
    void appendValue(std::string& text, const ToldChange& change);
    const Topics& topics() const { return siteTopics; }
    const PointTable& points() const { return table; }
    int qos() const { return settings.qos; }

private:
    MqttMessage state(const std::string& topic, const std::string& word, const std::string& when) const;

    const Settings settings;
    const PointTable& table;
    const Topics siteTopics;
    TimeText time{utcTimeText};
};

} // namespace host
