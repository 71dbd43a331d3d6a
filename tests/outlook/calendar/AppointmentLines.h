// Texts of appointment objects, for tests to compare.
#pragma once

#include "outlook/calendar/RecurrenceSupport.h"
#include "platform/Bstr.h"
#include "platform/WindowsHeaders.h"
#include "service/ItemAccess.h"

#include "PimStoreBridge.h"

#include <cstdint>
#include <cstdio>
#include <string>

// "2024-03-05 09:30:00"; tenths of microseconds behind it where there are some.
inline std::string TimeText(const FILETIME& time)
{
    const std::uint64_t units =
        static_cast<std::uint64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
    if (units == 0)
        return "0";
    SYSTEMTIME parts = {};
    FileTimeToSystemTime(&time, &parts);
    char text[48];
    std::snprintf(text,
                  sizeof(text),
                  "%04u-%02u-%02u %02u:%02u:%02u",
                  parts.wYear,
                  parts.wMonth,
                  parts.wDay,
                  parts.wHour,
                  parts.wMinute,
                  parts.wSecond);
    if (units % 10'000'000 != 0)
        return text + (" +" + std::to_string(units % 10'000'000));
    return text;
}

inline std::string NarrowText(const std::wstring& text)
{
    std::string result;
    for (const wchar_t unit : text)
    {
        char part[16];
        std::snprintf(part, sizeof(part), unit >= 0x20 && unit < 0x7F ? "%c" : "{%04X}", unit);
        result += part;
    }
    return result;
}

// What an appointment object holds, one property a line, without those that are as in a new one.
inline std::string TextOfAppointment(INEntityItem* item)
{
    std::string text;
    const auto appointment = QueryItem<INAppointment>(item);
    if (!appointment)
        return "no appointment";
    const auto addText = [&](const char* name, HRESULT result, const Bstr& value) {
        if (result != S_OK || value)
            text += std::string(name) + " " + NarrowText(::TextOf(value.Get())) + "\n";
    };
    const auto addDate = [&](const char* name, DATE date) {
        if (date != 0.0)
        {
            // To the nearest second, which is what a DATE can tell.
            SYSTEMTIME parts = {};
            VariantTimeToSystemTime(date, &parts);
            FILETIME time = {};
            SystemTimeToFileTime(&parts, &time);
            text += std::string(name) + " " + TimeText(time) + "\n";
        }
    };
    Bstr value;
    DATE date = 0.0;
    ULONG number = 0;
    VARIANT_BOOL truth = 0;
    addText("PersistID", appointment->get_PersistID(value.Put()), value);
    item->get_LastModificationTime(&date);
    addDate("LastModificationTime", date);
    addText("Subject", appointment->get_Subject(value.Put()), value);
    appointment->get_Reminder(&number);
    if (number != 0)
        text += "Reminder " + std::to_string(static_cast<LONG>(number)) + "\n";
    addText("Place", appointment->get_Place(value.Put()), value);
    _tagRecurringInfo record;
    appointment->get_RecurringInfo(&record);
    text += ::TextOf(record);
    addText("TimeZone", appointment->get_TimeZone(value.Put()), value);
    appointment->get_AllDay(&truth);
    if (truth != 0)
        text += "AllDay " + std::to_string(truth) + "\n";
    appointment->get_StartTime(&date);
    addDate("StartTime", date);
    appointment->get_EndTime(&date);
    addDate("EndTime", date);
    appointment->get_IsBusy(&truth);
    if (truth != 0)
        text += "IsBusy " + std::to_string(truth) + "\n";
    addText("Description", appointment->get_Description(value.Put()), value);
    return text;
}
