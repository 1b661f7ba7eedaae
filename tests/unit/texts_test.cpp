// The catalogue of translated texts: what a language file gives, and what is refused.
#include "base/texts.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

TEST(Texts, AFileGivesItsTranslationsAndSaysWhatIsWrong) {
    const std::string file =
        "\xEF\xBB\xBF# a comment\r\n\"Open\"\r\n= \"\xC3\x96"
        "ffnen\"\r\n\n\"Not yet\"\n\"Empty\"\n= \"\"\n"
        "\"Tab\\t\\\"q\\\" \\\\\"\n=\"Zeile\\t\\\"q\\\" \\\\\"\n\"Open\"\n= \"Zweimal\"\n= "
        "\"Allein\"\nrubbish\n\"%d\"\n= \"%s\"\n\"A\n";
    std::vector<CatalogueFault> faults;
    const TextCatalogue catalogue = TextCatalogue::Parse(file, &faults);
    EXPECT_EQ(catalogue.Size(), 2U);
    TextsUse(&catalogue);
    EXPECT_STREQ(Text(L"Open"), L"\u00D6ffnen");
    const wchar_t* const unknown = L"Empty";
    EXPECT_EQ(Text(unknown), unknown);
    EXPECT_EQ(Text(nullptr), nullptr);
    TextsUse(nullptr);
    EXPECT_STREQ(Text(L"Open"), L"Open");
    std::vector<int> lines;
    for (const CatalogueFault& fault : faults) lines.push_back(fault.line);
    EXPECT_EQ(lines, (std::vector<int>{11, 12, 13, 15, 16}));
}

TEST(Texts, ATranslationFitsTheTextThatItStandsFor) {
    struct Case {
        const wchar_t *english, *translation;
        bool fits;
    };
    const Case cases[] = {
        {L"Line %d of %s", L"Zeile %d von %s", true},
        {L"Line %d of %s", L"%s hat %d", false},
        {L"Line %d", L"Zeile", false},
        {L"Line %d", L"Zeile %lld", false},
        {L"Line %d", L"Zeile %05d", true},
        {L"Line %d", L"Zeile %*d", false},
        {L"Plain", L"Mit %n", false},
        {L"At 100 %.", L"Bei 100 %.", true},
        {L"%d %% done", L"%d %% getan", true},
        {L"%d %% done", L"%d % getan", false},
        {L"%I64u bytes", L"%I64u Byte", true},
        {L"%I64u bytes", L"%u Byte", false},
        {L"{1} of {2}", L"{2} hat {1}", true},
        {L"{1} of {2}", L"{1} hat {1}", false},
        {L"{asm} stands", L"{lst} steht", true},
        {L"&Open", L"\u00D6&ffnen", true},
        {L"&Open", L"Oeffnen", false},
        {L"Build && &Run", L"&Bauen && laufen", true},
        {L"Save & go", L"&Weiter", false},
        {L"&Copy\tCtrl+C", L"&Kopieren\tCtrl+C", true},
        {L"&Copy\tCtrl+C", L"&Kopieren\tStrg+C", false},
        {L"&Copy\tCtrl+C", L"&Kopieren", false},
        {L"Ended.\r\n", L"Ende.\r\n", true},
        {L"Ended.\r\n", L"Ende.\n", false},
        {L"Ended.", L"Ende.\n", false},
    };
    for (const Case& c : cases)
        EXPECT_EQ(TranslationFits(c.english, c.translation), c.fits) << c.english << " " << c.translation;
}

TEST(Texts, ASentenceAndAFilterAreFilledIn) {
    const TextCatalogue catalogue =
        TextCatalogue::Parse("\"{1} is in {2}.\"\n= \"{2} hat {1}.\"\n\"All (*.*)\"\n= \"Alle (*.*)\"\n", nullptr);
    EXPECT_EQ(TextWith(L"{1} is in {2}.", {L"a{2}", L"b"}), L"a{2} is in b.");
    TextsUse(&catalogue);
    EXPECT_EQ(TextWith(L"{1} is in {2}.", {L"a{2}", L"b"}), L"b hat a{2}.");
    EXPECT_EQ(TextWith(L"{1} is in {2}.", {L"a"}), L" hat a.");
    EXPECT_EQ(FilterText(L"C\0*.c\0All (*.*)\0*.*\0"), std::wstring(L"C\0*.c\0Alle (*.*)\0*.*\0\0", 22));
    TextsUse(nullptr);
}

}  // namespace
