// How much of an item a command needs.
#pragma once

namespace pim
{
enum class ReadFields
{
    ForTable, // what a list shows; each field costs a call to the server
    All
};
} // namespace pim
