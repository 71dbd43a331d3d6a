#include "client/core/PictureName.h"

#include <gtest/gtest.h>

using namespace pim;

namespace
{
std::wstring FileName(const std::wstring& name, const std::wstring& picture = L"a.png")
{
    Contact contact;
    contact.displayName = name;
    contact.picture = picture;
    return PictureFileName(contact, 1);
}
} // namespace

TEST(PictureNameTest, IsTheContactsNameAndThePicturesExtension)
{
    EXPECT_EQ(FileName(L"Oda Bakken"), L"Oda Bakken.png");
    EXPECT_EQ(FileName(L"Oda", L"C:\\Temp\\pic9.tmp.JPEG"), L"Oda.JPEG");
    EXPECT_EQ(FileName(L"Dr. Oda"), L"Dr. Oda.png");
    EXPECT_EQ(FileName(L""), L"contact.png");
}

TEST(PictureNameTest, NumbersPicturesOfOneName)
{
    Contact contact;
    contact.displayName = L"Oda";
    EXPECT_EQ(PictureFileName(contact, 1), L"Oda.jpg");
    EXPECT_EQ(PictureFileName(contact, 2), L"Oda (2).jpg");
}

TEST(PictureNameTest, StaysInItsFolder)
{
    EXPECT_EQ(FileName(L"..\\..\\evil"), L".._.._evil.png");
    EXPECT_EQ(FileName(L"C:\\a/b"), L"C__a_b.png");
    EXPECT_EQ(FileName(L".."), L"contact.png");
    EXPECT_EQ(FileName(L"a<>:\"|?*\x1F"
                       L"b"),
              L"a________b.png");
    EXPECT_EQ(FileName(L"end. . "), L"end.png");
    EXPECT_EQ(FileName(L"Oda", L"C:\\x.\\..\\y"), L"Oda.jpg");
    EXPECT_EQ(FileName(L"Oda", L"C:\\x.toolong"), L"Oda.jpg");
    EXPECT_EQ(FileName(L"Oda", L"C:\\x."), L"Oda.jpg");
    EXPECT_EQ(FileName(L"Oda", L""), L"Oda.jpg");
}

TEST(PictureNameTest, IsNoDevice)
{
    EXPECT_EQ(FileName(L"con"), L"_con.png");
    EXPECT_EQ(FileName(L"AUX.file"), L"_AUX.file.png");
    EXPECT_EQ(FileName(L"Prn"), L"_Prn.png");
    EXPECT_EQ(FileName(L"nul"), L"_nul.png");
    EXPECT_EQ(FileName(L"COM1"), L"_COM1.png");
    EXPECT_EQ(FileName(L"lpt9"), L"_lpt9.png");
    EXPECT_EQ(FileName(L"Connie"), L"Connie.png");
    EXPECT_EQ(FileName(L"COM12"), L"COM12.png");
    EXPECT_EQ(FileName(L"AUX1"), L"AUX1.png");
}

TEST(PictureNameTest, KnowsDevicesByRaisedDigitsAndByBlanksBeforeTheDot)
{
    EXPECT_EQ(FileName(L"COM\u00b9"), L"_COM\u00b9.png");
    EXPECT_EQ(FileName(L"lpt\u00b3.a"), L"_lpt\u00b3.a.png");
    EXPECT_EQ(FileName(L"con .a"), L"_con .a.png");
    EXPECT_EQ(FileName(L"COM1  .a"), L"_COM1  .a.png");
    EXPECT_EQ(FileName(L"conin$"), L"_conin$.png");
    EXPECT_EQ(FileName(L"CONOUT$"), L"_CONOUT$.png");
    EXPECT_EQ(FileName(L"COM\u2074"), L"COM\u2074.png");
    EXPECT_EQ(FileName(L" con"), L" con.png");
}

TEST(PictureNameTest, CutsLongNamesBetweenCharacters)
{
    EXPECT_EQ(FileName(std::wstring(200, L'a')), std::wstring(80, L'a') + L".png");
    std::wstring name(79, L'a');
    name += wchar_t(0xD83D);
    name += wchar_t(0xDE00);
    EXPECT_EQ(FileName(name), std::wstring(79, L'a') + L".png");
}
