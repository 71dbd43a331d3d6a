// The contract between the row and property walkers and those who use what they deliver.
#pragma once

#include "platform/WindowsHeaders.h"

class ICallback
{
  public:
    virtual ~ICallback() = default;

    // Takes one table row or one set of read properties.
    //   cValues:     the number of properties.
    //   lpProps:     owned by the walker and valid during the call only. What could not be read
    //                has the type PT_ERROR in the low word of its tag.
    //   callType:    tells which walk this is; each implementer defines its own numbers.
    //   pContinue:   preset to 1; cleared by the callback to stop a walk over rows.
    // Returns a truth value whose meaning the caller of the walk defines.
    virtual BOOL OnPropertyRow(ULONG cValues,
                               LPSPropValue lpProps,
                               int callType,
                               BOOL* pContinue) = 0;
};
