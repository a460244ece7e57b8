#include <runtime/Secret.h>

#include <QFile>
#include <QTemporaryDir>

#include <cstdlib>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace host;

namespace {

class SecretFile : public testing::Test {
protected:
    Secret readWith(mode_t mode, const char* text = "sesame\n") {
        QFile file(QString::fromStdString(path));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(text);
        file.close();
        EXPECT_EQ(::chmod(path.c_str(), mode), 0);
        return readSecret({path, {}, {}});
    }

    // As a plain user's where the test runs as root, whose files have a rule of their own.
    void giveAway() {
        if (::geteuid() == 0) {
            EXPECT_EQ(::chown(path.c_str(), 65534, 65534), 0);
        }
    }

    QTemporaryDir folder;
    const std::string path = folder.filePath("password").toStdString();
};

} // namespace

TEST_F(SecretFile, IsReadWithoutTheEndOfItsLine) {
    EXPECT_EQ(readWith(0600).text.value_or("none"), "sesame");
    EXPECT_EQ(readWith(0400, "open sesame\r\n").text.value_or("none"), "open sesame");
}

TEST_F(SecretFile, IsRefusedWhenOthersCanReadOrChangeIt) {
    for (const mode_t mode : {0604U, 0602U, 0644U, 0666U}) {
        const Secret secret = readWith(mode);
        EXPECT_FALSE(secret.text) << mode;
        EXPECT_EQ(secret.fault,
                  "the file \"" + path +
                      "\" can be read or changed by other users; take that from them: chmod 600 " + path);
    }
}

TEST_F(SecretFile, IsRefusedWhenTheGroupOfAUserCanReadIt) {
    readWith(0640);
    giveAway();
    EXPECT_FALSE(readSecret({path, {}, {}}).text);
}

TEST_F(SecretFile, IsRefusedWithTheReasonWhenItCannotBeRead) {
    EXPECT_EQ(readWith(0600, "\n").fault,
              "the file \"" + path + "\" holds nothing; write the secret into it");
    const std::string missing = path + ".missing";
    EXPECT_EQ(readSecret({missing, {}, {}}).fault.find("the file \"" + missing + "\" "), 0U);
}

TEST(SecretVariable, IsReadFromTheEnvironment) {
    ::setenv("SBUS_TEST_SECRET", "sesame", 1);
    EXPECT_EQ(readSecret({{}, "SBUS_TEST_SECRET", {}}).text.value_or("none"), "sesame");
    ::unsetenv("SBUS_TEST_SECRET");
    EXPECT_EQ(readSecret({{}, "SBUS_TEST_SECRET", {}}).fault,
              "the variable SBUS_TEST_SECRET of the environment is not set; set it for the host's process");
}
