#pragma once

#include "PlainLayout.h"

namespace host {

// A message for each RTU and publication, not retained, since it holds only what has changed:
//   PREFIX/SITE/LINE/RTU
//   {"values":[{"point":"LEVEL","value":21.5,"unit":"m","quality":"good","time":"..."},...]}
// States and commands are those of the plain layout.
class BatchLayout : public PlainLayout {
public:
    using PlainLayout::PlainLayout;

    std::size_t tellChanges(const ToldChange* changes, std::size_t count, MqttMessage& into) override;

    static constexpr std::size_t mostValues = 1'000;   // of one message
    static constexpr std::size_t fullPayload = 65'536; // bytes; another value begins another message
};

} // namespace host
