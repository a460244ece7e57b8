#include "Crowd.h"
#include "FakeHost.h"
#include "cli/ControlClient.h"
#include "services/control/ControlServer.h"

#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// A thousand clients at once.

using testing::HasSubstr;

TEST(Crowd, OfAThousandIsServedThoughHalfOfItIsSilentOrSendsRubbish) {
    const QTemporaryDir folder;
    const std::string path = folder.filePath(QStringLiteral("control.sock")).toStdString();
    const host::Site site = controlSite();
    FakeHost fake(site);
    host::ControlServer server(fake, fake.store);
    ASSERT_EQ(server.start(doorAt(path)), "");

    Crowd crowd(path, 1'000);
    ASSERT_TRUE(crowd.connectAll());
    crowd.sendAll(R"({"do":"write","values":[{"point":"hill/RUN","value":1}]})");
    EXPECT_TRUE(crowd.waitForReplies());
    EXPECT_EQ(crowd.goodReplies(), crowd.goodRequests());
    EXPECT_EQ(crowd.errorReplies(), crowd.rubbishLines());
    EXPECT_EQ(fake.commands().size(), crowd.goodRequests());

    host::ControlClient late;
    ASSERT_TRUE(late.connectTo({path}));
    ASSERT_TRUE(late.send(R"({"do":"status"})"));
    EXPECT_THAT(late.nextLine([] { return false; })->toStdString(), HasSubstr("channels"));
}
