#include "windows/ServicePlan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using host::planService;
using host::serviceNameFault;
using host::serviceSid;
using testing::HasSubstr;

TEST(ServicePlan, StartsThisProgramWithTheSiteAndItsOptions) {
    const host::ServicePlan plan = planService("waterworks", R"(C:\Program Files\sbus\sbus-host.exe)",
                                               R"(D:\plant one\site.toml)", {"--log-dir", R"(D:\logs\)"});
    EXPECT_EQ(plan.commandLine, R"("C:\Program Files\sbus\sbus-host.exe" "service" "run" "waterworks" )"
                                R"("D:\plant one\site.toml" "--log-dir" "D:\logs\\")");
    EXPECT_THAT(plan.description, HasSubstr(R"(D:\plant one\site.toml)"));
    EXPECT_EQ(plan.displayName, "sbus-host waterworks");
    EXPECT_EQ(plan.eventSource, "sbus-host-waterworks");
}

TEST(ServicePlan, RunsAsAnAccountOfItsOwn) {
    EXPECT_EQ(planService("waterworks", "p", "s", {}).account, R"(NT SERVICE\waterworks)");
}

// The account of Windows' own service TrustedInstaller, which is the same everywhere.
TEST(ServicePlan, KnowsTheAccountsSid) {
    const std::string sid = "S-1-5-80-956008885-3418522649-1831038044-1853292631-2271478464";
    EXPECT_EQ(serviceSid("TrustedInstaller"), sid);
    EXPECT_EQ(serviceSid("trustedinstaller"), sid) << "names of services have no case";
}

TEST(ServicePlan, TakesNamesThatNeedNoQuotesAnywhere) {
    for (const char* const name : {"waterworks", "Plant-1", "a.b_c", "9"})
        EXPECT_EQ(serviceNameFault(name), "") << name;
    for (const char* const name : {"", "a b", "a\\b", "a/b", "\"a\"", "-a", ".a", "W\xC3\xA4rme", "a\nb"})
        EXPECT_NE(serviceNameFault(name), "") << name;
    EXPECT_EQ(serviceNameFault(std::string(80, 'a')), "");
    EXPECT_NE(serviceNameFault(std::string(81, 'a')), "");
}
