#include "symbols/SymbolElements.h"

#include <gtest/gtest.h>

namespace {

// "R300..309 float", or why there is nothing.
std::string read(const std::string& type, const std::string& address) {
    const host::ParsedElements parsed = host::parseSymbolElements(type, address);
    if (!parsed.elements)
        return parsed.reason;
    const host::SymbolElements& elements = *parsed.elements;
    std::string text = toText(elements.first);
    if (elements.isRange)
        text += ".." + std::to_string(elements.first.number + elements.count - 1);
    return text + (elements.isFloat ? " float" : "");
}

} // namespace

TEST(SymbolElements, StandInTypeAndAddress) {
    EXPECT_EQ(read("R", "100"), "R100");
    EXPECT_EQ(read("", "R 100"), "R100");
    EXPECT_EQ(read("r", "r100"), "R100");
    EXPECT_EQ(read("Register Float", "300"), "R300 float");
    EXPECT_EQ(read("R (REAL)", "300"), "R300 float");
}

TEST(SymbolElements, AreNamedInFourLanguages) {
    for (const char* const word : {"I", "Input", "Eingang", "Entrée", "ENTRÉE", "Ingresso"})
        EXPECT_EQ(read(word, "5"), "I5") << word;
    for (const char* const word : {"O", "Output", "Ausgang", "Sortie", "Uscita"})
        EXPECT_EQ(read(word, "5"), "O5") << word;
    for (const char* const word : {"F", "FLAG", "Merker", "Indicateur", "Indicatore"})
        EXPECT_EQ(read(word, "5"), "F5") << word;
    for (const char* const word : {"R", "register", "Registre", "Registro"})
        EXPECT_EQ(read(word, "5"), "R5") << word;
    for (const char* const word : {"T", "Timer", "Zeitglied", "Temporisateur", "Temporizzatore"})
        EXPECT_EQ(read(word, "5"), "T5") << word;
    for (const char* const word : {"C", "Counter", "Zähler", "ZÄHLER", "Compteur", "Contatore"})
        EXPECT_EQ(read(word, "5"), "C5") << word;
}

TEST(SymbolElements, MayBeARange) {
    for (const char* const address : {"R 100..109", "R100..R109", "R100 - 109", "R100[10]", "R 100 [ 10 ]"})
        EXPECT_EQ(read("", address), "R100..109") << address;
    EXPECT_EQ(read("F [8]", "100"), "F100..107");
    EXPECT_EQ(read("F[8]", "100..101"), "F100..101"); // the address is nearer to the elements
    EXPECT_EQ(read("R[1]", "7"), "R7..7");
    EXPECT_EQ(read("R", "65535..65535"), "R65535..65535");
    for (const char* const address : {"R 9..8", "R 65535[2]", "R1[0]"})
        EXPECT_EQ(read("", address), "its range ends before it begins, or beyond element 65535") << address;
}

TEST(SymbolElements, HaveAnAddressThatIsUnderstood) {
    EXPECT_EQ(read("R", ""), "it has no address");
    for (const char* const address : {"65536", "-5", "x5", "[3]"})
        EXPECT_EQ(read("R", address), "its address is not that of an element, 0 to 65535") << address;
    for (const char* const address : {"100.5", "5 6", "5..", "5[", "5..F9"})
        EXPECT_EQ(read("R", address), "its address is not understood") << address;
    EXPECT_EQ(read("R", "F 5"), "its type and its address name different media");
    EXPECT_EQ(read("T FLOAT", "5"), "only registers hold floating-point values");
}

TEST(SymbolElements, AreOfAKindThatIsPolled) {
    EXPECT_EQ(read("TEXT", "4000"), "kind \"TEXT\" is not polled");
    EXPECT_EQ(read("", "DB 4000"), "kind \"DB\" is not polled");
    EXPECT_EQ(read("K", "12"), "kind \"K\" is not polled");
}
