#include "tests/storeconformance/StoreConformanceTest.h"

#include <algorithm>

namespace
{
constexpr ULONG kContactFolder = 0x36D10102;     // PR_IPM_CONTACT_ENTRYID
constexpr ULONG kAppointmentFolder = 0x36D00102; // PR_IPM_APPOINTMENT_ENTRYID
constexpr ULONG kWriteStore = 0x00000004;        // MDB_WRITE

class MessagesOfFolder final : public ItemContainer
{
  public:
    explicit MessagesOfFolder(Microsoft::WRL::ComPtr<IMAPIFolder> folder)
        : m_folder(std::move(folder))
    {
    }
    HRESULT Create(IMAPIProp** item) override
    {
        IMessage* message = nullptr;
        const HRESULT result = m_folder->CreateMessage(nullptr, 0, &message);
        *item = message;
        return result;
    }
    HRESULT Delete(SBinaryArray* items) override
    {
        return m_folder->DeleteMessages(items, 0, nullptr, 0);
    }
    IMAPIContainer& Container() override { return *m_folder.Get(); }

  private:
    Microsoft::WRL::ComPtr<IMAPIFolder> m_folder;
};

class EntriesOfBook final : public ItemContainer
{
  public:
    EntriesOfBook(Microsoft::WRL::ComPtr<IABContainer> container, EntryIdBytes userTemplate)
        : m_container(std::move(container)), m_template(std::move(userTemplate))
    {
    }
    HRESULT Create(IMAPIProp** item) override
    {
        return m_container->CreateEntry(static_cast<ULONG>(m_template.size()),
                                        reinterpret_cast<LPENTRYID>(m_template.data()),
                                        CREATE_REPLACE,
                                        item);
    }
    HRESULT Delete(SBinaryArray* items) override { return m_container->DeleteEntries(items, 0); }
    IMAPIContainer& Container() override { return *m_container.Get(); }

  private:
    Microsoft::WRL::ComPtr<IABContainer> m_container;
    EntryIdBytes m_template;
};

template <typename Function> void Bind(HMODULE library, const char* name, Function*& function)
{
    function = reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(library, name)));
    EXPECT_NE(nullptr, function) << name;
}
} // namespace

MapiFunctions::MapiFunctions(IWABObject* library)
    : freeProws([library](LPSRowSet rows) {
          for (ULONG i = 0; rows && i < rows->cRows; ++i)
              library->FreeBuffer(rows->aRow[i].lpProps);
          library->FreeBuffer(rows);
      }),
      freeBuffer(
          [library](void* buffer) { return static_cast<ULONG>(library->FreeBuffer(buffer)); })
{
}

MapiFunctions::MapiFunctions(HMODULE library)
{
    Bind(library, "MAPIInitialize", initialize);
    Bind(library, "MAPIUninitialize", uninitialize);
    Bind(library, "MAPILogonEx", logonEx);
    void(WINAPI * freeRowsEntry)(LPSRowSet) = nullptr;
    Bind(library, "FreeProws@4", freeRowsEntry);
    freeProws = freeRowsEntry;
    MAPIFREEBUFFER* freeBufferEntry = nullptr;
    Bind(library, "MAPIFreeBuffer", freeBufferEntry);
    freeBuffer = freeBufferEntry;
    Bind(library, "MAPIAllocateBuffer", allocateBuffer);
    Bind(library, "MAPIAllocateMore", allocateMore);
    Bind(library, "WrapCompressedRTFStream", wrapCompressedRtfStream);
    Bind(library, "HrGetOneProp", getOneProp);
    Bind(library, "HrQueryAllRows@24", queryAllRows);
}

SPropValue LongProp(ULONG tag, LONG number)
{
    SPropValue value = {};
    value.ulPropTag = tag;
    value.Value.l = number;
    return value;
}

SPropValue TextProp(ULONG tag, const wchar_t* text)
{
    SPropValue value = {};
    value.ulPropTag = tag;
    value.Value.lpszW = const_cast<wchar_t*>(text);
    return value;
}

SPropValue BinaryProp(ULONG tag, std::vector<BYTE>& bytes)
{
    SPropValue value = {};
    value.ulPropTag = tag;
    value.Value.bin = {static_cast<ULONG>(bytes.size()), bytes.data()};
    return value;
}

void StoreConformanceTest::SetUp()
{
    m_under = GetParam().make();
    m_library.Reset(LoadLibraryW(m_under->LibraryPath().c_str()));
    ASSERT_TRUE(m_library);
    if (m_under->IsBook())
        OpenBook();
    else
        OpenStore();
}

void StoreConformanceTest::OpenBook()
{
    auto* const open = reinterpret_cast<WABOPEN*>(
        reinterpret_cast<void*>(GetProcAddress(m_library.Get(), "WABOpen")));
    ASSERT_NE(nullptr, open);
    Com<IAddrBook> book;
    ASSERT_EQ(S_OK, open(book.GetAddressOf(), m_wab.GetAddressOf(), nullptr, 0));
    m_mapi = std::make_unique<MapiFunctions>(m_wab.Get());
    ULONG size = 0;
    LPENTRYID id = nullptr;
    ASSERT_EQ(S_OK, book->GetPAB(&size, &id));
    const auto* const bytes = reinterpret_cast<const BYTE*>(id);
    const auto container = OpenFrom<IABContainer>(book.Get(), EntryIdBytes(bytes, bytes + size), 0);
    m_mapi->freeBuffer(id);
    ASSERT_TRUE(container);
    m_items = std::make_unique<EntriesOfBook>(container,
                                              EntryIdOf(container.Get(), PR_DEF_CREATE_MAILUSER));
}

void StoreConformanceTest::OpenStore()
{
    m_mapi = std::make_unique<MapiFunctions>(m_library.Get());
    if (HasFailure())
        return;
    MAPIINIT_0 init = {0, 8}; // MAPI_NO_COINIT
    ASSERT_EQ(S_OK, m_mapi->initialize(&init));
    m_isInitialised = true;
    // New session, extended, default profile.
    ASSERT_EQ(S_OK, m_mapi->logonEx(0, nullptr, nullptr, 0x62, m_session.GetAddressOf()));
    ASSERT_NO_FATAL_FAILURE(OpenDefaultStore());
    ASSERT_NO_FATAL_FAILURE(OpenFolders());
}

void StoreConformanceTest::OpenDefaultStore()
{
    Com<IMAPITable> table;
    ASSERT_EQ(S_OK, m_session->GetMsgStoresTable(0, table.GetAddressOf()));
    const Rows rows = AllRows(table.Get(), {PR_ENTRYID, PR_DEFAULT_STORE});
    ASSERT_TRUE(rows);
    for (ULONG i = 0; i < rows->cRows; ++i)
    {
        const SPropValue* const values = rows->aRow[i].lpProps;
        if (values[1].ulPropTag != PR_DEFAULT_STORE || !values[1].Value.b)
            continue;
        const SBinary& id = values[0].Value.bin;
        ASSERT_EQ(S_OK,
                  m_session->OpenMsgStore(0,
                                          id.cb,
                                          reinterpret_cast<LPENTRYID>(id.lpb),
                                          nullptr,
                                          kWriteStore | MAPI_DEFERRED_ERRORS,
                                          m_store.GetAddressOf()));
    }
    ASSERT_TRUE(m_store);
}

void StoreConformanceTest::OpenFolders()
{
    ULONG size = 0;
    LPENTRYID id = nullptr;
    wchar_t messageClass[] = L"IPM.Note";
    ASSERT_EQ(S_OK,
              m_store->GetReceiveFolder(
                  reinterpret_cast<LPTSTR>(messageClass), MAPI_UNICODE, &size, &id, nullptr));
    const auto* const bytes = reinterpret_cast<const BYTE*>(id);
    m_inbox = Open<IMAPIFolder>(EntryIdBytes(bytes, bytes + size));
    m_mapi->freeBuffer(id);
    ASSERT_TRUE(m_inbox);
    m_contacts = Open<IMAPIFolder>(EntryIdOf(m_inbox.Get(), kContactFolder));
    m_calendar = Open<IMAPIFolder>(EntryIdOf(m_inbox.Get(), kAppointmentFolder));
    ASSERT_TRUE(m_contacts);
    ASSERT_TRUE(m_calendar);
    m_items = std::make_unique<MessagesOfFolder>(m_contacts);
}

void StoreConformanceTest::TearDown()
{
    m_items.reset();
    m_wab.Reset();
    m_calendar.Reset();
    m_contacts.Reset();
    m_inbox.Reset();
    m_store.Reset();
    m_session.Reset();
    if (m_isInitialised)
        m_mapi->uninitialize();
    m_library.Reset();
    if (m_under)
    {
        if (const std::string complaints = m_under->Complaints(); complaints != m_allowedComplaint)
        {
            EXPECT_EQ("", complaints);
        }
    }
}

StoreConformanceTest::Props StoreConformanceTest::Get(IMAPIProp* object, Tags tags, ULONG flags)
{
    ULONG count = 0;
    SPropValue* values = nullptr;
    const HRESULT result = object->GetProps(tags.Get(), flags, &count, &values);
    EXPECT_TRUE(result == S_OK || result == MAPI_W_ERRORS_RETURNED) << std::hex << result;
    EXPECT_EQ(tags.Get()->cValues, count);
    EXPECT_NE(nullptr, values);
    return Props(values, Freer{m_mapi.get()});
}

EntryIdBytes StoreConformanceTest::EntryIdOf(IMAPIProp* object, ULONG tag)
{
    const Props props = Get(object, {tag});
    EXPECT_EQ(tag, props[0].ulPropTag);
    if (props[0].ulPropTag != tag)
        return {};
    const SBinary& id = props[0].Value.bin;
    return EntryIdBytes(id.lpb, id.lpb + id.cb);
}

std::wstring StoreConformanceTest::TextOf(IMAPIProp* object, ULONG tag)
{
    const Props props = Get(object, {tag});
    return PROP_TYPE(props[0].ulPropTag) == PT_UNICODE ? props[0].Value.lpszW : L"(missing)";
}

void StoreConformanceTest::Set(IMAPIProp* object, std::vector<SPropValue> values)
{
    SPropProblemArray* problems = nullptr;
    EXPECT_EQ(S_OK, object->SetProps(static_cast<ULONG>(values.size()), values.data(), &problems));
    EXPECT_EQ(nullptr, problems);
    m_mapi->freeBuffer(problems);
}

void StoreConformanceTest::Save(IMAPIProp* object, ULONG flags)
{
    EXPECT_EQ(S_OK, object->SaveChanges(flags));
}

StoreConformanceTest::Com<IMessage> StoreConformanceTest::NewMessage(const wchar_t* subject,
                                                                     bool save,
                                                                     ULONG flags)
{
    Com<IMessage> message;
    EXPECT_EQ(S_OK, m_contacts->CreateMessage(nullptr, flags, message.GetAddressOf()));
    Set(message.Get(), {TextProp(PR_SUBJECT_W, subject)});
    if (save)
        Save(message.Get());
    return message;
}

StoreConformanceTest::Com<IMAPIProp> StoreConformanceTest::NewItem(const wchar_t* subject,
                                                                   bool save)
{
    Com<IMAPIProp> item;
    EXPECT_EQ(S_OK, m_items->Create(item.GetAddressOf()));
    Set(item.Get(), {TextProp(PR_SUBJECT_W, subject)});
    if (save)
        Save(item.Get());
    return item;
}

EntryIdBytes StoreConformanceTest::AddItem(const wchar_t* subject)
{
    return EntryIdOf(NewItem(subject).Get());
}

EntryIdBytes StoreConformanceTest::AddMessage(const wchar_t* subject)
{
    return EntryIdOf(NewMessage(subject).Get());
}

StoreConformanceTest::Com<IMAPITable> StoreConformanceTest::Contents(ULONG flags)
{
    Com<IMAPITable> table;
    EXPECT_EQ(S_OK, m_items->Container().GetContentsTable(flags, table.GetAddressOf()));
    return table;
}

StoreConformanceTest::Rows StoreConformanceTest::AllRows(IMAPITable* table, Tags columns)
{
    EXPECT_EQ(S_OK, table->SetColumns(columns.Get(), 0));
    EXPECT_EQ(S_OK, table->SeekRow(BOOKMARK_BEGINNING, 0, nullptr));
    LPSRowSet rows = nullptr;
    EXPECT_EQ(S_OK, table->QueryRows(1000, 0, &rows));
    return Own(rows);
}

std::vector<std::wstring> StoreConformanceTest::Column(IMAPITable* table, ULONG tag)
{
    std::vector<std::wstring> texts;
    const Rows rows = AllRows(table, {tag});
    for (ULONG i = 0; rows && i < rows->cRows; ++i)
    {
        const SPropValue& value = rows->aRow[i].lpProps[0];
        texts.push_back(PROP_TYPE(value.ulPropTag) == PT_UNICODE ? value.Value.lpszW
                                                                 : L"(missing)");
    }
    return texts;
}
