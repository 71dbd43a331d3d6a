#include "outlook/contacts/PictureFile.h"

#include <gtest/gtest.h>

#include <string>

TEST(PictureFileTest, ThePrefixIsTheFirstThreeCharactersOfTheName)
{
    EXPECT_EQ(L"Con", PicturePrefix(L"ContactPicture.jpg"));
    EXPECT_EQ(L"abc", PicturePrefix(L"abc"));
    EXPECT_EQ(L"ab", PicturePrefix(L"ab"));
    EXPECT_EQ(L"\u65e5\u672c.", PicturePrefix(L"\u65e5\u672c.jpg"));
    EXPECT_EQ(L" .~", PicturePrefix(L" .~1"));
    EXPECT_EQ(L"", PicturePrefix(L""));
}

TEST(PictureFileTest, ACharacterThatNoNameCanHoldGivesAPrefixOfOurs)
{
    for (const wchar_t unit : std::wstring(L"\\/:*?\"<>|\x01\x09\x0d\x1f\x7f") + L'\0')
        for (const std::size_t at : {0u, 1u, 2u})
        {
            std::wstring name = L"abc";
            name[at] = unit;
            EXPECT_EQ(L"pic", PicturePrefix(name)) << static_cast<unsigned>(unit) << " at " << at;
            EXPECT_EQ(L"pic", PicturePrefix(name + L".jpg"))
                << static_cast<unsigned>(unit) << " at " << at;
        }
    EXPECT_EQ(L"pic", PicturePrefix(L"..\\evil.exe"));
    EXPECT_EQ(L"pic", PicturePrefix(L"/"));
    EXPECT_EQ(L"pic", PicturePrefix(L"C:"));
}

TEST(PictureFileTest, WhatStandsBehindTheThirdCharacterDoesNotCount)
{
    EXPECT_EQ(L"abc", PicturePrefix(L"abc\\..\\..\\evil.exe"));
    EXPECT_EQ(L"..a", PicturePrefix(L"..a:stream"));
    // The characters beside the control characters are like any other.
    EXPECT_EQ(L" !~", PicturePrefix(L" !~"));
    EXPECT_EQ(L"\u0080[]", PicturePrefix(L"\u0080[]"));
}

TEST(PictureFileTest, TheExtensionStaysAsItIs)
{
    EXPECT_EQ(L".jpg", PictureExtension(L".jpg"));
    EXPECT_EQ(L".PNG", PictureExtension(L".PNG"));
    EXPECT_EQ(L"gif", PictureExtension(L"gif"));
    EXPECT_EQ(L".tar.gz", PictureExtension(L".tar.gz"));
    EXPECT_EQ(L"..", PictureExtension(L".."));
    EXPECT_EQ(L" ", PictureExtension(L" "));
}

TEST(PictureFileTest, AnEmptyOrDangerousExtensionIsThatOfAPhoto)
{
    EXPECT_EQ(L".jpg", PictureExtension(L""));
    for (const wchar_t unit : std::wstring(L"\\/:*?\"<>|\x01\x1f\x7f") + L'\0')
    {
        EXPECT_EQ(L".jpg", PictureExtension(std::wstring(1, unit))) << static_cast<unsigned>(unit);
        EXPECT_EQ(L".jpg", PictureExtension(L".png" + std::wstring(1, unit)))
            << static_cast<unsigned>(unit);
    }
    EXPECT_EQ(L".jpg", PictureExtension(L"\\..\\..\\evil.exe"));
    EXPECT_EQ(L".jpg", PictureExtension(L".png:stream"));
}

TEST(PictureFileTest, AFileLiesInItsFolderOnly)
{
    EXPECT_TRUE(IsFileOfFolder(L"C:\\Temp\\", L"C:\\Temp\\Con12.tmp.jpg"));
    EXPECT_TRUE(IsFileOfFolder(L"C:\\Temp", L"C:\\Temp\\Con12.tmp.jpg"));
    EXPECT_TRUE(IsFileOfFolder(L"C:/Temp/", L"C:/Temp/a"));
    EXPECT_TRUE(IsFileOfFolder(L"C:/Temp", L"C:/Temp/..a"));
    for (const wchar_t* path : {L"C:\\Temp",
                                L"C:\\Temp\\",
                                L"C:\\Temp\\a\\b",
                                L"C:\\Temp\\a/b",
                                L"C:\\Temp\\\\a",
                                L"C:\\Temp\\..\\a",
                                L"C:\\Temp\\.",
                                L"C:\\Temp\\..",
                                L"C:\\Temp\\...",
                                L"C:\\Temp\\. .",
                                L"C:\\Temp\\a:stream",
                                L"C:\\Temp\\a*",
                                L"C:\\Temp\\a\x1f",
                                L"C:\\Temporary\\a",
                                L"C:\\temp\\a",
                                L"D:\\Temp\\a",
                                L"a",
                                L""})
    {
        EXPECT_FALSE(IsFileOfFolder(L"C:\\Temp\\", path)) << std::wstring(path).size();
        EXPECT_FALSE(IsFileOfFolder(L"C:\\Temp", path)) << std::wstring(path).size();
    }
    // Another folder of which the name begins alike.
    EXPECT_FALSE(IsFileOfFolder(L"C:\\Temp", L"C:\\Tempab"));
    EXPECT_FALSE(IsFileOfFolder(L"", L"a"));
    EXPECT_FALSE(IsFileOfFolder(L"", L"\\a"));
}

TEST(PictureFileTest, ADeviceIsNoFile)
{
    for (const wchar_t* name : {L"CON",
                                L"con.jpg",
                                L"Prn",
                                L"AUX.tmp.jpg",
                                L"nul",
                                L"NUL .jpg",
                                L"conin$",
                                L"CONOUT$.x",
                                L"COM0",
                                L"com1.tmp",
                                L"COM9.tmp.jpg",
                                L"LPT1",
                                L"lpt\u00b9",
                                L"COM\u00b2.jpg",
                                L"LPT\u00b3"})
        EXPECT_FALSE(IsFileOfFolder(L"C:\\Temp\\", std::wstring(L"C:\\Temp\\") + name))
            << std::string(name, name + std::wstring(name).size());
    for (const wchar_t* name :
         {L"CON1.tmp", L"COM", L"COM12.tmp", L"COMa.tmp", L"LPTX", L"xCOM1", L"NULL", L"a.CON"})
        EXPECT_TRUE(IsFileOfFolder(L"C:\\Temp\\", std::wstring(L"C:\\Temp\\") + name))
            << std::string(name, name + std::wstring(name).size());
}
