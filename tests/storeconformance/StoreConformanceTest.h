// Base of the conformance tests: a session and the usual folders of a new store, or the personal
// container of a new address book, and short forms of what each test does to items and tables.
// Expected values come from the published rules of the interfaces.
#pragma once

#include "platform/UniqueHandle.h"
#include "platform/WindowsHeaders.h"
#include "tests/storeconformance/StoreUnderTest.h"

#include <gmock/gmock.h>

#include <mapiguid.h>

#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

using EntryIdBytes = std::vector<BYTE>;

// The functions of a store library; of a book's there are the two that free.
struct MapiFunctions
{
    explicit MapiFunctions(HMODULE library);
    explicit MapiFunctions(IWABObject* library);

    MAPIINITIALIZE* initialize;
    MAPIUNINITIALIZE* uninitialize;
    HRESULT(WINAPI* logonEx)(ULONG_PTR, LPWSTR, LPWSTR, ULONG, LPMAPISESSION*);
    std::function<void(LPSRowSet)> freeProws;
    std::function<ULONG(void*)> freeBuffer;
    MAPIALLOCATEBUFFER* allocateBuffer;
    MAPIALLOCATEMORE* allocateMore;
    HRESULT(WINAPI* wrapCompressedRtfStream)(IStream*, ULONG, IStream**);
    HRESULT(WINAPI* getOneProp)(IMAPIProp*, ULONG, LPSPropValue*);
    HRESULT(WINAPI* queryAllRows)
    (IMAPITable*, LPSPropTagArray, LPSRestriction, LPSSortOrderSet, LONG, LPSRowSet*);
};

// Some tags as the interfaces take them.
class Tags
{
  public:
    Tags(std::initializer_list<ULONG> tags) : m_words(1, static_cast<ULONG>(tags.size()))
    {
        m_words.insert(m_words.end(), tags);
    }
    SPropTagArray* Get() { return reinterpret_cast<SPropTagArray*>(m_words.data()); }

  private:
    std::vector<ULONG> m_words;
};

// Values of tests; texts and bytes stay the test's own.
SPropValue LongProp(ULONG tag, LONG number);
SPropValue TextProp(ULONG tag, const wchar_t* text);
SPropValue BinaryProp(ULONG tag, std::vector<BYTE>& bytes);

// Where items are made, listed and deleted: messages of a folder, entries of a book.
class ItemContainer
{
  public:
    virtual ~ItemContainer() = default;
    virtual HRESULT Create(IMAPIProp** item) = 0;
    virtual HRESULT Delete(SBinaryArray* items) = 0;
    virtual IMAPIContainer& Container() = 0;
};

class StoreConformanceTest : public testing::TestWithParam<StoreUnderTestFactory>
{
  protected:
    struct Freer
    {
        const MapiFunctions* mapi;
        void operator()(void* buffer) const { mapi->freeBuffer(buffer); }
        void operator()(SRowSet* rows) const { mapi->freeProws(rows); }
    };
    using Props = std::unique_ptr<SPropValue[], Freer>;
    using Rows = std::unique_ptr<SRowSet, Freer>;
    template <typename T> using Com = Microsoft::WRL::ComPtr<T>;

    void SetUp() override;
    void TearDown() override;

    template <typename T> std::unique_ptr<T, Freer> Own(T* buffer)
    {
        return std::unique_ptr<T, Freer>(buffer, Freer{m_mapi.get()});
    }

    // Values of the tags, wide texts; reports anything but S_OK and MAPI_W_ERRORS_RETURNED and
    // another count than that of the tags.
    Props Get(IMAPIProp* object, Tags tags, ULONG flags = MAPI_UNICODE);
    // One value; its entry ID bytes.
    EntryIdBytes EntryIdOf(IMAPIProp* object, ULONG tag = PR_ENTRYID);
    // The text of a property; "(missing)" where it is PT_ERROR.
    std::wstring TextOf(IMAPIProp* object, ULONG tag);

    template <typename T> Com<T> Open(const EntryIdBytes& entryId, ULONG flags = MAPI_BEST_ACCESS)
    {
        return OpenFrom<T>(m_store.Get(), entryId, flags);
    }
    template <typename T, typename Container>
    Com<T> OpenFrom(Container* container, EntryIdBytes entryId, ULONG flags = MAPI_BEST_ACCESS)
    {
        Com<IUnknown> opened;
        ULONG type = 0;
        const HRESULT result = container->OpenEntry(static_cast<ULONG>(entryId.size()),
                                                    entryId.empty() ? nullptr : AsEntryId(entryId),
                                                    nullptr,
                                                    flags,
                                                    &type,
                                                    opened.GetAddressOf());
        EXPECT_EQ(S_OK, result);
        // OpenEntry gives the object's own interface under the type of the base.
        Com<T> object;
        if (opened)
            object = static_cast<T*>(opened.Get());
        return object;
    }
    static LPENTRYID AsEntryId(EntryIdBytes& bytes)
    {
        return reinterpret_cast<LPENTRYID>(bytes.data());
    }

    // A new item with a subject, a message of the contact folder or an entry; saved where asked.
    Com<IMAPIProp> NewItem(const wchar_t* subject, bool save = true);
    // The same, given up; its entry ID.
    EntryIdBytes AddItem(const wchar_t* subject);
    Com<IMAPIProp> OpenItem(const EntryIdBytes& entryId, ULONG flags = MAPI_BEST_ACCESS)
    {
        return OpenFrom<IMAPIProp>(&m_items->Container(), entryId, flags);
    }
    // A new message of the contact folder with a subject; saved where asked.
    Com<IMessage> NewMessage(const wchar_t* subject, bool save = true, ULONG flags = 0);
    // The same, given up; its entry ID.
    EntryIdBytes AddMessage(const wchar_t* subject);
    void Set(IMAPIProp* object, std::vector<SPropValue> values);
    void Save(IMAPIProp* object, ULONG flags = KEEP_OPEN_READWRITE);

    Com<IMAPITable> Contents(ULONG flags = MAPI_UNICODE);
    // All rows with those columns.
    Rows AllRows(IMAPITable* table, Tags columns);
    // The wide texts of one column, row by row; "(missing)" for PT_ERROR.
    std::vector<std::wstring> Column(IMAPITable* table, ULONG tag);

    std::unique_ptr<StoreUnderTest> m_under;
    // What a test may make a store complain of; one that does not watch its callers says nothing.
    std::string m_allowedComplaint;
    UniqueModule m_library;
    std::unique_ptr<MapiFunctions> m_mapi;
    Com<IMAPISession> m_session;
    Com<IMsgStore> m_store;
    Com<IMAPIFolder> m_inbox;
    Com<IMAPIFolder> m_contacts;
    Com<IMAPIFolder> m_calendar;
    std::unique_ptr<ItemContainer> m_items;

  private:
    void OpenStore();
    void OpenBook();
    void OpenDefaultStore();
    void OpenFolders();
    bool m_isInitialised = false;
    Com<IWABObject> m_wab;
};

// Tests of items and their tables, which stores and address books have alike.
class ItemConformanceTest : public StoreConformanceTest
{
};
