// What the tests of the item objects share: the forms of texts and dates, and arrays of texts.
#pragma once

#include "platform/Bstr.h"
#include "platform/SafeArray.h"
#include "tests/automation/CollectionFixture.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <string>
#include <vector>

// A text property of an interface.
template <typename Interface> struct TextProperty
{
    const char* name;
    HRESULT (STDMETHODCALLTYPE Interface::*get)(BSTR*);
    HRESULT (STDMETHODCALLTYPE Interface::*put)(BSTR);
};

template <typename Interface> Bstr Get(const TextProperty<Interface>& property, Interface* object)
{
    const Bstr leftOver(L"left over");
    BSTR raw = leftOver.Get();
    EXPECT_EQ(S_OK, (object->*property.get)(&raw)) << property.name;
    EXPECT_NE(leftOver.Get(), raw) << property.name;
    return Bstr::Adopt(raw == leftOver.Get() ? nullptr : raw);
}

// What every text property does, but for a null put.
template <typename Interface>
void ExpectTextForm(const TextProperty<Interface>& property, Interface* object)
{
    SCOPED_TRACE(property.name);
    EXPECT_FALSE(Get(property, object)); // null at first
    EXPECT_EQ(E_POINTER, (object->*property.get)(nullptr));

    const Bstr text(L"R\u00e9union \u65e5\u672c");
    EXPECT_EQ(S_OK, (object->*property.put)(text.Get()));
    const Bstr first = Get(property, object);
    const Bstr second = Get(property, object);
    EXPECT_EQ(text.View(), first.View());
    EXPECT_NE(text.Get(), first.Get());
    EXPECT_NE(first.Get(), second.Get()); // each get gives a new string

    // Cut at the first zero: "ab" of "ab", NUL, "cd".
    const Bstr withZero(std::wstring_view(L"ab\0cd", 5));
    EXPECT_EQ(S_OK, (object->*property.put)(withZero.Get()));
    EXPECT_EQ(L"ab", Get(property, object).View());

    // An empty string is a value of its own, not null.
    const Bstr empty((std::wstring_view()));
    EXPECT_EQ(S_OK, (object->*property.put)(empty.Get()));
    const Bstr gotEmpty = Get(property, object);
    EXPECT_TRUE(gotEmpty);
    EXPECT_EQ(L"", gotEmpty.View());

    EXPECT_EQ(S_OK, (object->*property.put)(text.Get()));
}

// A put of null is refused and changes nothing.
template <typename Interface>
void ExpectNullRefused(const TextProperty<Interface>& property, Interface* object)
{
    SCOPED_TRACE(property.name);
    const Bstr old(L"old");
    EXPECT_EQ(S_OK, (object->*property.put)(old.Get()));
    EXPECT_EQ(E_POINTER, (object->*property.put)(nullptr));
    EXPECT_EQ(L"old", Get(property, object).View());
}

// A put of null empties the property.
template <typename Interface>
void ExpectNullClears(const TextProperty<Interface>& property, Interface* object)
{
    SCOPED_TRACE(property.name);
    const Bstr old(L"old");
    EXPECT_EQ(S_OK, (object->*property.put)(old.Get()));
    EXPECT_EQ(S_OK, (object->*property.put)(nullptr));
    EXPECT_FALSE(Get(property, object));
    EXPECT_EQ(S_OK, (object->*property.put)(nullptr));
    EXPECT_FALSE(Get(property, object));
}

// Where memory ends, a put keeps the old text and a get gives null.
template <typename Interface>
void ExpectOutOfMemory(const TextProperty<Interface>& property, Interface* object)
{
    SCOPED_TRACE(property.name);
    const Bstr text(LongTextsFail::Text());
    const Bstr held(LongTextsFail::Text() + L"y");
    EXPECT_EQ(S_OK, (object->*property.put)(held.Get()));
    BSTR out = text.Get();
    {
        const LongTextsFail fail;
        EXPECT_EQ(E_OUTOFMEMORY, (object->*property.put)(text.Get()));
        EXPECT_EQ(E_OUTOFMEMORY, (object->*property.get)(&out));
    }
    EXPECT_EQ(nullptr, out);
    EXPECT_EQ(held.View(), Get(property, object).View());
}

// Gives each property a text of its own.
template <typename Interface, typename Properties>
void PutOwnTexts(const Properties& properties, Interface* object)
{
    for (const TextProperty<Interface>& property : properties)
    {
        const std::string name = property.name;
        const Bstr own(L"only " + std::wstring(name.begin(), name.end()));
        EXPECT_EQ(S_OK, (object->*property.put)(own.Get())) << name;
    }
}

// Each property still has the text of PutOwnTexts: no two share a field.
template <typename Interface, typename Properties>
void ExpectOwnTexts(const Properties& properties, Interface* object)
{
    for (const TextProperty<Interface>& property : properties)
    {
        const std::string name = property.name;
        EXPECT_EQ(L"only " + std::wstring(name.begin(), name.end()), Get(property, object).View())
            << name;
    }
}

// A date property of an interface.
template <typename Interface> struct DateProperty
{
    const char* name;
    HRESULT (STDMETHODCALLTYPE Interface::*get)(DATE*);
    HRESULT (STDMETHODCALLTYPE Interface::*put)(DATE);
};

template <typename Interface> DATE Get(const DateProperty<Interface>& property, Interface* object)
{
    DATE value = -77.0;
    EXPECT_EQ(S_OK, (object->*property.get)(&value)) << property.name;
    return value;
}

// Zero at first; then every value comes back bit by bit.
template <typename Interface>
void ExpectDateForm(const DateProperty<Interface>& property, Interface* object)
{
    SCOPED_TRACE(property.name);
    EXPECT_EQ(0.0, Get(property, object));
    EXPECT_EQ(E_POINTER, (object->*property.get)(nullptr));
    for (const DATE value : {std::numeric_limits<DATE>::quiet_NaN(), 1e300, -1.5, 45000.25})
    {
        EXPECT_EQ(S_OK, (object->*property.put)(value));
        const DATE got = Get(property, object);
        EXPECT_EQ(0, std::memcmp(&value, &got, sizeof(value)));
    }
}

// An array of those texts, lower bound 0.
inline UniqueSafeArray ArrayOf(const std::vector<std::wstring>& texts)
{
    UniqueSafeArray array(SafeArrayCreateVector(VT_BSTR, 0, static_cast<ULONG>(texts.size())));
    const SafeArrayAccess<BSTR> elements(array.Get());
    for (std::size_t i = 0; i < texts.size(); ++i)
        elements.Data()[i] = Bstr(std::wstring_view(texts[i])).Detach();
    return array;
}

// The texts of a one-dimensional array of BSTR.
inline std::vector<std::wstring> TextsOf(SAFEARRAY* array)
{
    std::vector<std::wstring> texts;
    VARTYPE type = VT_EMPTY;
    EXPECT_EQ(S_OK, SafeArrayGetVartype(array, &type));
    EXPECT_EQ(VT_BSTR, type);
    EXPECT_EQ(1u, SafeArrayGetDim(array));
    const SafeArrayAccess<BSTR> elements(array);
    if (type == VT_BSTR && elements)
        for (ULONG i = 0; i < array->rgsabound[0].cElements; ++i)
            texts.push_back(TextOf(elements.Data()[i]));
    return texts;
}
