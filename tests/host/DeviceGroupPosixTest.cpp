#include "runtime/DeviceGroup.h"

#include <QTemporaryFile>

#include <gtest/gtest.h>

#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

class DeviceGroup : public testing::Test {
protected:
    std::string groupOfMode(mode_t mode) {
        EXPECT_TRUE(device.open());
        const std::string path = device.fileName().toStdString();
        EXPECT_EQ(chown(path.c_str(), geteuid(), getegid()), 0);
        EXPECT_EQ(chmod(path.c_str(), mode), 0);
        return host::groupThatMayOpen(path);
    }

    QTemporaryFile device;
};

} // namespace

TEST_F(DeviceGroup, IsThatOfADeviceWhichItsGroupMayOpen) {
    EXPECT_EQ(groupOfMode(0660), getgrgid(getegid())->gr_name);
}

TEST_F(DeviceGroup, IsNoneWhereTheGroupMayNot) {
    EXPECT_EQ(groupOfMode(0600), "");
    EXPECT_EQ(groupOfMode(0640), "");
    EXPECT_EQ(host::groupThatMayOpen("/no/such/device"), "");
}
