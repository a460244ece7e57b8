#include "services/control/Admission.h"

#include <gtest/gtest.h>

using host::Admission;
using host::AdmittedGroup;
using host::ControlAccess;
using host::judgeClient;

namespace {

constexpr host::UserId owner = 1000;
const host::Peer stranger{1001, {1001, 27}};
const AdmittedGroup readers{27, ControlAccess::Read};
const AdmittedGroup operators{27, ControlAccess::Commands};
const AdmittedGroup others{28, ControlAccess::Commands};

} // namespace

TEST(ControlAdmission, IsForTheUserAndRoot) {
    EXPECT_EQ(judgeClient(host::Peer{owner, {5}}, owner, {}), Admission::Commands);
    EXPECT_EQ(judgeClient(host::Peer{0, {0}}, owner, {}), Admission::Commands);
    EXPECT_EQ(judgeClient(stranger, owner, {}), Admission::Refused);
    EXPECT_EQ(judgeClient(stranger, 0, {}), Admission::Refused);
}

TEST(ControlAdmission, IsForMembersOfTheGroupAsFarAsItGoes) {
    EXPECT_EQ(judgeClient(stranger, owner, readers), Admission::Reads);
    EXPECT_EQ(judgeClient(stranger, owner, operators), Admission::Commands);
    EXPECT_EQ(judgeClient(stranger, owner, others), Admission::Refused);
    EXPECT_EQ(judgeClient(host::Peer{owner, {27}}, owner, readers), Admission::Commands);
}

TEST(ControlAdmission, IsForNobodyWhomTheSystemDoesNotTell) {
    EXPECT_EQ(judgeClient(std::nullopt, owner, operators), Admission::Refused);
}
