#include "localstore/StoreComponent.h"

#include "localstore/BookComponent.h"

namespace
{

constexpr wchar_t kStoreLibrary[] = L"PimLocalStore.dll";
constexpr wchar_t kLibraryFolder[] = L"\\Common Files\\System\\MSMAPI\\0";
constexpr wchar_t kLibraryName[] = L"\\MSMAPI32.DLL";

// A component that no installer knows, so that its lookup finds nothing and the folder counts.
constexpr wchar_t kComponentId[] = L"{643A40F0-0696-463C-8344-D6E3F9C60E71}";
// The first string tells the version, one whose categories are kept in the store; both together
// name the user's value with the folder's number.
constexpr const wchar_t* kApplication[] = {L"Microsoft\\Office\\14.0\\Outlook",
                                           L"PimStoreBridgeFolder"};

} // namespace

bool PlanStore(const std::wstring& home,
               const std::wstring& programFiles,
               ComponentPlan& plan,
               std::wstring& reason)
{
    ProductFiles files;
    if (!FindProductFiles(home, kStoreLibrary, files, reason))
        return false;
    const std::wstring folder = programFiles + kLibraryFolder;
    const std::wstring path = folder + kLibraryName;
    if (files.command.size() > kLongestClientText || path.size() > kLongestClientText)
    {
        reason = TooLongReason(files.command.size() > kLongestClientText ? home : programFiles);
        return false;
    }
    plan = {};
    plan.component = kStoreComponent;
    plan.home = home;
    plan.values = {
        {kOutlookClientKey, L"MSIComponentID", kComponentId, WhenTaken::Refuse},
        {kOutlookClientKey,
         L"MSIApplicationLCID",
         L"",
         WhenTaken::Refuse,
         {std::begin(kApplication), std::end(kApplication)}},
        {std::wstring(kOutlookClientKey) + kOpenCommand, L"", files.command, WhenTaken::Refuse},
        // Only where there is no default: an existing one is never changed.
        {kMailClients, L"", kMicrosoftOutlook, WhenTaken::Leave},
    };
    plan.folders = {folder};
    plan.files = {{files.library, path}};
    return true;
}
