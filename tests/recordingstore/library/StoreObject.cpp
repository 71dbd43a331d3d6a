#include "tests/recordingstore/library/StoreObject.h"

#include "tests/recordingstore/library/HostileAnswers.h"

#include <cstring>
#include <cwctype>

namespace
{
std::wstring UpperCase(std::wstring text)
{
    for (wchar_t& unit : text)
        unit = static_cast<wchar_t>(std::towupper(unit));
    return text;
}

// A class as the caller gives it: wide or narrow, null for the class of all.
std::wstring ReadClass(const void* text, bool isUnicode)
{
    if (!text)
        return {};
    if (isUnicode)
        return static_cast<const wchar_t*>(text);
    const auto* const narrow = static_cast<const char*>(text);
    return std::wstring(narrow, narrow + std::strlen(narrow));
}

void* CopyClass(const std::wstring& text, bool isUnicode, const std::string& name)
{
    const std::size_t unit = isUnicode ? sizeof(wchar_t) : 1;
    void* const copy = TheLibrary().memory.Allocate((text.size() + 1) * unit, name);
    for (std::size_t i = 0; i < text.size(); ++i)
        if (isUnicode)
            static_cast<wchar_t*>(copy)[i] = text[i];
        else
            static_cast<char*>(copy)[i] = static_cast<char>(text[i]);
    return copy;
}
} // namespace

StoreObject::StoreObject(NodePtr node, bool isWritable)
    : PropObject("IMsgStore", node->name, std::make_shared<DirectBag>(node, isWritable)),
      m_node(std::move(node))
{
}

HRESULT StoreObject::CompareEntryIDs(
    ULONG leftSize, LPENTRYID left, ULONG rightSize, LPENTRYID right, ULONG flags, ULONG* isSame)
{
    return RunCall(
        Begin("CompareEntryIDs(" + EntryText(leftSize, left) + ", " + EntryText(rightSize, right) +
              ", " + FlagsText(flags) + ")"),
        [&](StoreFault) -> HRESULT {
            if (!isSame || (leftSize && !left) || (rightSize && !right))
                return MAPI_E_INVALID_PARAMETER;
            const Content& content = TheLibrary().content;
            const NodePtr one = content.FindEntry(left, leftSize).first;
            *isSame = one && one == content.FindEntry(right, rightSize).first;
            return S_OK;
        },
        isSame);
}

HRESULT StoreObject::OpenEntry(
    ULONG size, LPENTRYID entryId, LPCIID interfaceId, ULONG flags, ULONG* type, LPUNKNOWN* object)
{
    return RunCall(
        Begin(OpenEntryText(size, entryId, interfaceId, flags, type)),
        [&](StoreFault fault) {
            const NodePtr root = TheLibrary().content.RootOf(*m_node);
            return OpenNode(root, size, entryId, interfaceId, flags, fault, type, object);
        },
        object);
}

HRESULT StoreObject::GetReceiveFolder(
    LPTSTR messageClass, ULONG flags, ULONG* size, LPENTRYID* entryId, LPTSTR* explicitClass)
{
    const bool isUnicode = (flags & MAPI_UNICODE) != 0;
    const std::string classText = isUnicode
                                      ? WideArgument(messageClass)
                                      : NarrowArgument(reinterpret_cast<const char*>(messageClass));
    return RunCall(
        Begin("GetReceiveFolder(" + classText + ", " + FlagsText(flags) +
              (explicitClass ? ", class)" : ")")),
        [&](StoreFault fault) -> HRESULT {
            if (!size || !entryId)
                return MAPI_E_INVALID_PARAMETER;
            if (flags & ~MAPI_UNICODE)
                return MAPI_E_UNKNOWN_FLAGS;
            const Content& content = TheLibrary().content;
            // The longest class that is named and equal to the whole, or to its front parts.
            std::wstring wanted = UpperCase(ReadClass(messageClass, isUnicode));
            auto found = content.receiveFolders.find(wanted);
            while (found == content.receiveFolders.end() && !wanted.empty())
            {
                const std::size_t dot = wanted.rfind(L'.');
                wanted.resize(dot == std::wstring::npos ? 0 : dot);
                found = content.receiveFolders.find(wanted);
            }
            const NodePtr folder = found == content.receiveFolders.end()
                                       ? nullptr
                                       : content.Find(found->second.second);
            if (!folder)
                return MAPI_E_NOT_FOUND;
            DeliverEntryId(folder->entryId, folder->name, size, entryId);
            SpoilEntryId(fault, *size, *entryId);
            if (explicitClass)
                *explicitClass = static_cast<LPTSTR>(
                    CopyClass(found->second.first, isUnicode, "receive class of " + Name()));
            return S_OK;
        },
        size,
        entryId,
        explicitClass);
}
