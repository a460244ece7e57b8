#include <SystemText.h>
#include <Utf8.h>

#include <gtest/gtest.h>

namespace {

// Speaks as a system does that is set to German: in the user's code page where there is one.
class German : public std::error_category {
public:
    const char* name() const noexcept override { return "german"; }
#ifdef _WIN32
    std::string message(int) const override {
        return "Gr\xf6\xdf"
               "e ung\xfcltig";
    } // Windows-1252
#else
    std::string message(int) const override {
        return "Größe ungültig";
    }
#endif
};

} // namespace

TEST(SystemText, IsUtf8) {
    const German german;
    EXPECT_EQ(text::systemText({1, german}), "Größe ungültig");
}

TEST(SystemText, OfAnUnknownErrorIsUtf8Too) {
    EXPECT_EQ(text::findInvalidUtf8(text::systemText({987'654, std::system_category()})), std::string::npos);
}
