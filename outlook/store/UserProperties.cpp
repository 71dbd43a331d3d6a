#include "outlook/store/UserProperties.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace
{
struct IdentityText
{
    ULONG tag;
    std::wstring UserIdentity::*text;
};

// In the order in which they are asked for and come back.
// clang-format off
constexpr IdentityText kTexts[] = {
    {0x3A00001F, &UserIdentity::account},                 // PR_ACCOUNT_W
    {0x3002001F, &UserIdentity::addressType},             // PR_ADDRTYPE_W
    {0x3001001F, &UserIdentity::displayName},             // PR_DISPLAY_NAME_W
    {0x3A16001F, &UserIdentity::company},                 // PR_COMPANY_NAME_W
    {0x3003001F, &UserIdentity::emailAddress},            // PR_EMAIL_ADDRESS_W
    {0x3A06001F, &UserIdentity::firstName},               // PR_GIVEN_NAME_W
    {0x3A11001F, &UserIdentity::lastName},                // PR_SURNAME_W
    {0x3A19001F, &UserIdentity::officeLocation},          // PR_OFFICE_LOCATION_W
    {0x39FE001F, &UserIdentity::smtpAddress},             // PR_SMTP_ADDRESS_W
    {0x3A20001F, &UserIdentity::transmitableDisplayName}, // PR_TRANSMITABLE_DISPLAY_NAME_W
};
// clang-format on
static_assert(std::size(kTexts) == 10);
} // namespace

CUserProperties::CUserProperties(IMAPIProp* identity, CMAPIHelper* helper)
    : LiveObject(helper ? &helper->Live() : nullptr), m_pIdentity(identity), m_pHelper(helper)
{
    if (!m_pIdentity || !m_pHelper)
        return;
    std::array<ULONG, std::size(kTexts)> tags;
    std::transform(std::begin(kTexts), std::end(kTexts), tags.begin(), [](const IdentityText& row) {
        return row.tag;
    });
    m_pHelper->EnumerateProperties(m_pIdentity.Get(), tags, 0, this, MAPI_UNICODE);
}

void CUserProperties::Detach() noexcept
{
    m_pHelper = nullptr;
    m_pIdentity.Reset();
}

BOOL CUserProperties::OnPropertyRow(ULONG cValues, LPSPropValue lpProps, int, BOOL* pContinue)
{
    const std::size_t count = std::min<std::size_t>(cValues, std::size(kTexts));
    for (std::size_t i = 0; i < count; ++i)
    {
        // A value that is missing has the type PT_ERROR; nothing but wide text was asked for.
        const SPropValue& value = lpProps[i];
        if (PROP_TYPE(value.ulPropTag) == PT_UNICODE && value.Value.lpszW)
            this->*kTexts[i].text = value.Value.lpszW;
    }
    *pContinue = FALSE;
    return TRUE;
}
