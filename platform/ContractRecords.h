// The records and enumerations of the automation contract that pure code fills and reads: on
// Windows those of the contract's generated header, on other hosts the same names and layouts.
// The sizes are checked on both sides; tests compare every field of the type library.
#pragma once

#include "platform/Types.h"

#ifdef _WIN32

#include "platform/WindowsHeaders.h"

#include "PimStoreBridge.h"

#else

// Clients may write any number where an enumeration stands, so these hold all of them.
enum _tagNAppointmentRecurringType : std::int32_t
{
    None = 0,
    Daily = 1,
    Weekly = 2,
    Monthly = 3,
    Yearly = 4
};

enum _tagNAppointmentEndType : std::int32_t
{
    NoEnd = 0,
    EndByCount = 1,
    EndByDate = 2
};

struct _tagDailyInfo
{
    VARIANT_BOOL bIsByDayMode;
    VARIANT_BOOL bIsByWeekdayMode;
    std::uint32_t ulIntervalDay;
};

struct _tagWeeklyInfo
{
    std::uint32_t ulIntervalWeek;
    VARIANT_BOOL bValidWeekday[7];
};

struct _tagMonthlyInfo
{
    VARIANT_BOOL bIsByMonthDayMode;
    VARIANT_BOOL bIsByDayMode;
    std::uint32_t ulIntervalMonth;
    std::int32_t lMonthDay;
    std::int32_t lNth;
    VARIANT_BOOL bValidWeekday[7];
};

struct _tagYearlyInfo
{
    VARIANT_BOOL bIsByMonthDayMode;
    VARIANT_BOOL bIsByDayMode;
    std::uint32_t ulIntervalYear;
    std::int32_t lMonth;
    std::int32_t lDay;
    std::int32_t lNth;
    VARIANT_BOOL bValidWeekday[7];
};

struct _tagEndInfo
{
    _tagNAppointmentEndType eEndType;
    DATE dtEndDateTime;
    std::uint32_t ulTimesAfter;
};

struct _tagModifiedInstanceInfo
{
    DATE dtModifiedDate;
    DATE dtStartDateTime;
    DATE dtEndDateTime;
    DATE dtOriginalDateTime;
    std::uint16_t szSubject[260];
    std::uint16_t szLocation[260];
};

struct _tagRecurringInfo
{
    _tagNAppointmentRecurringType eRecurType;
    _tagDailyInfo tDaily;
    _tagWeeklyInfo tWeekly;
    _tagMonthlyInfo tMonthly;
    _tagYearlyInfo tYearly;
    _tagEndInfo tEndInfo;
    DATE arrDeletedInstance[64];
    _tagModifiedInstanceInfo arrModifiedInstance[32];
};

#endif

inline constexpr int kMaxDeletedInstances = 64;
inline constexpr int kMaxModifiedInstances = 32;

static_assert(sizeof(_tagRecurringInfo) == 34944);
