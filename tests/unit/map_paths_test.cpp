// Names of files in line maps, as text alone.
#include "program/map_paths.h"

#include <gtest/gtest.h>

namespace {

TEST(MapPaths, AreFoundBesideTheSource) {
    const struct {
        const wchar_t *path, *expected;
    } cases[] = {
        {L"steps.bas", L"C:\\src\\steps.bas"},   {L"./lib/part.inc", L"C:\\src\\lib\\part.inc"},
        {L"D:/x/a.bas", L"D:\\x\\a.bas"},        {L"\\\\server\\share\\a.bas", L"\\\\server\\share\\a.bas"},
        {L"..\\up.inc", L"C:\\src\\..\\up.inc"}, {L"", L""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(MapPath(c.path, L"C:\\src"), c.expected);
        EXPECT_EQ(MapPath(c.path, L"C:\\src\\"), c.expected);
    }
}

TEST(MapPaths, CopiesHaveTheSourcesNameAndAnExtensionThatCopiesGet) {
    const struct {
        const wchar_t* path;
        bool copy;
    } cases[] = {
        {L"C:\\src\\main.pb", true},   {L"D:\\out\\MAIN.BAS", true},  {L"main.bas", true},
        {L"C:\\src\\main.inc", false}, {L"C:\\src\\other.pb", false}, {L"C:\\main.pb\\x", false},
    };
    for (const auto& c : cases) EXPECT_EQ(LooksLikeCopy(c.path, L"C:\\src\\main.kxa"), c.copy);
}

}  // namespace
