#include "FakeHost.h"
#include "services/control/ControlService.h"

#include <gtest/gtest.h>

using namespace host;

TEST(ServiceEnd, CommandsMayEndAfterTheServiceIsGone) {
    const Site site = controlSite();
    FakeHost fake(site);
    fake.hold();
    int woken = 0;
    {
        ControlService service(
            fake, fake.store,
            {[](ClientId, const QByteArray&) {}, [](ClientId) { return true; }, [&woken] { ++woken; }, {}});
        service.handleLine(1, R"({"id":1,"do":"write","values":[{"point":"hill/RUN","value":1}]})");
    }
    fake.release();
    EXPECT_EQ(woken, 0);
}
