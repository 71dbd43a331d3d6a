// What a walk says of items that did not open.
#include "client/CommandContext.h"

#include "client/core/RecordedOutput.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
template <typename Kind> std::vector<std::wstring> ErrorsFor(unsigned count)
{
    const pim::Command command;
    const pim::OutputStream output(STD_OUTPUT_HANDLE);
    const RecordedOutput errors(false);
    pim::WarnOfLeftOut({command, output, errors, {}}, Kind::kWords, count);
    return errors.Texts();
}
} // namespace

TEST(LeftOutTest, IsSilentWhereEveryItemOpened)
{
    EXPECT_THAT(ErrorsFor<pim::ContactKind>(0), IsEmpty());
}

TEST(LeftOutTest, TellsHowManyItemsDidNotOpen)
{
    EXPECT_THAT(ErrorsFor<pim::ContactKind>(1),
                ElementsAre(L"pim: 1 contact could not be opened.\n"));
    EXPECT_THAT(ErrorsFor<pim::ContactKind>(2),
                ElementsAre(L"pim: 2 contacts could not be opened.\n"));
    EXPECT_THAT(ErrorsFor<pim::AppointmentKind>(1),
                ElementsAre(L"pim: 1 appointment could not be opened.\n"));
    EXPECT_THAT(ErrorsFor<pim::CategoryKind>(1000),
                ElementsAre(L"pim: 1000 categories could not be opened.\n"));
}
