#include "TextFile.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class TextFile : public testing::Test {
protected:
    std::string write(const QByteArray& contents) {
        QFile file(folder.filePath(QStringLiteral("file")));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(contents);
        return file.fileName().toStdString();
    }

    const QTemporaryDir folder;
};

} // namespace

TEST_F(TextFile, IsReadWhole) {
    EXPECT_EQ(text::readTextFile(write(QByteArray(200'000, 'x')), 200'000).contents,
              std::string(200'000, 'x'));
    EXPECT_EQ(text::readTextFile(write(""), 0).contents, "");
}

TEST_F(TextFile, IsRefusedBeyondItsLargestSize) {
    EXPECT_EQ(text::readTextFile(write("12345"), 4).fault, "is larger than 4 bytes");
    QFile sparse(folder.filePath(QStringLiteral("sparse")));
    ASSERT_TRUE(sparse.open(QIODevice::WriteOnly));
    ASSERT_TRUE(sparse.resize(65LL * 1024 * 1024));
    EXPECT_EQ(text::readTextFile(sparse.fileName().toStdString(), 64 * 1024 * 1024).fault,
              "is larger than 64 MB");
}

TEST_F(TextFile, IsRefusedWhenItIsNotThereOrADirectory) {
    EXPECT_EQ(text::readTextFile(folder.filePath(QStringLiteral("none")).toStdString(), 10).fault,
              "is not there");
    EXPECT_EQ(text::readTextFile(folder.path().toStdString(), 10).fault, "is a directory");
}
