// An appointment object of a client's own: tells each property call in order, and fails, gives null
// or calls back where a test says so. One object per call list; made with new, ends with its last
// reference.
#pragma once

#include "platform/WindowsHeaders.h"
#include "tests/hostileclient/WrongAnswers.h"
#include "tests/support/EarlyBound.h"

#include "PimStoreBridge.h"

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

class RecordingAppointment final : public EarlyBound<INAppointment, INEntityItem>
{
  public:
    // What the getters give; the puts are only told.
    std::map<std::string, std::wstring> texts; // by property name; an absent one reads as empty
    DATE startTime = 0.0;
    DATE endTime = 0.0;
    ULONG reminder = 0;
    VARIANT_BOOL allDay = 0;
    VARIANT_BOOL isBusy = 0;
    _tagRecurringInfo recurringInfo{};

    bool isAppointment = true;     // false: INEntityItem alone
    std::set<std::string> failing; // calls that give E_FAIL, such as "get Subject"
    std::set<std::string> nulls;   // text properties that read as null
    HRESULT textResult = S_OK;     // of the text properties that can be read
    std::function<void(const std::string& call)> onCall; // runs inside each call
    std::vector<std::string> calls;                      // "get Subject", "put Subject [Lunch]"
    bool keepsEntityId = false;                          // put EntityID changes texts["EntityID"]
    const WrongAnswers* answers = nullptr;               // what the getters give, but for EntityID
    bool isQuiet = false; // tells nothing; counts getEntityIdCalls only
    std::size_t getEntityIdCalls = 0;

    ULONG References() const noexcept { return m_references; }
    // Set to false when the object ends.
    bool* alive = nullptr;

    STDMETHODIMP QueryInterface(REFIID iid, void** result) override;
    STDMETHODIMP_(ULONG) AddRef() override { return ++m_references; }
    STDMETHODIMP_(ULONG) Release() override;

    STDMETHODIMP get_Subject(BSTR* value) override { return GetText("Subject", value); }
    STDMETHODIMP put_Subject(BSTR value) override { return PutText("Subject", value); }
    STDMETHODIMP get_Place(BSTR* value) override { return GetText("Place", value); }
    STDMETHODIMP put_Place(BSTR value) override { return PutText("Place", value); }
    STDMETHODIMP get_TimeZone(BSTR* value) override { return GetText("TimeZone", value); }
    STDMETHODIMP put_TimeZone(BSTR value) override { return PutText("TimeZone", value); }
    STDMETHODIMP get_StartTime(DATE* value) override { return Get("StartTime", value, startTime); }
    STDMETHODIMP put_StartTime(DATE value) override { return PutNumber("StartTime", value); }
    STDMETHODIMP get_EndTime(DATE* value) override { return Get("EndTime", value, endTime); }
    STDMETHODIMP put_EndTime(DATE value) override { return PutNumber("EndTime", value); }
    STDMETHODIMP get_Reminder(ULONG* value) override { return Get("Reminder", value, reminder); }
    STDMETHODIMP put_Reminder(ULONG value) override { return PutNumber("Reminder", value); }
    STDMETHODIMP get_Description(BSTR* value) override { return GetText("Description", value); }
    STDMETHODIMP put_Description(BSTR value) override { return PutText("Description", value); }
    STDMETHODIMP get_PersistID(BSTR* value) override { return GetText("PersistID", value); }
    STDMETHODIMP put_PersistID(BSTR value) override { return PutText("PersistID", value); }
    STDMETHODIMP get_AllDay(VARIANT_BOOL* value) override { return Get("AllDay", value, allDay); }
    STDMETHODIMP put_AllDay(VARIANT_BOOL value) override { return PutNumber("AllDay", value); }
    STDMETHODIMP get_IsBusy(VARIANT_BOOL* value) override { return Get("IsBusy", value, isBusy); }
    STDMETHODIMP put_IsBusy(VARIANT_BOOL value) override { return PutNumber("IsBusy", value); }
    STDMETHODIMP get_RecurringInfo(_tagRecurringInfo* value) override
    {
        return Get("RecurringInfo", value, recurringInfo);
    }
    STDMETHODIMP put_RecurringInfo(_tagRecurringInfo* value) override;
    STDMETHODIMP get_EntityID(BSTR* value) override;
    STDMETHODIMP put_EntityID(BSTR value) override;
    STDMETHODIMP get_LastModificationTime(DATE* value) override
    {
        return Get("LastModificationTime", value, 0.0);
    }
    STDMETHODIMP put_LastModificationTime(DATE value) override
    {
        return PutNumber("LastModificationTime", value);
    }
    STDMETHODIMP get_FolderID(BSTR* value) override { return GetText("FolderID", value); }
    STDMETHODIMP put_FolderID(BSTR value) override { return PutText("FolderID", value); }

    // A new object, owned by the pointer alone. (The toolchain's ComPtr::Attach adds a reference
    // of its own.)
    static Microsoft::WRL::ComPtr<RecordingAppointment> Make()
    {
        const Microsoft::WRL::ComPtr<RecordingAppointment> object = new RecordingAppointment;
        object->Release();
        return object;
    }

  private:
    ~RecordingAppointment() = default;

    // Tells the call; false where it is to fail.
    bool Enter(const std::string& call, const std::string& argument = {});
    HRESULT GetText(const std::string& name, BSTR* value);
    HRESULT PutText(const std::string& name, BSTR value);
    HRESULT PutNumber(const std::string& name, double value);
    template <typename T> HRESULT Get(const std::string& name, T* value, const T& given)
    {
        // A getter that fails may well have written something before it did.
        *value = given;
        if (!Enter("get " + name))
            return E_FAIL;
        return answers ? answers->Give(value) : S_OK;
    }

    ULONG m_references = 1;
};
