// Whatever is appended and renamed, the index finds what a walk through the list would.
#include "FuzzInput.h"
#include "Require.h"

#include "service/ItemIndex.h"

#include <string>
#include <vector>

namespace
{
// The first position at or behind the start with that ID, found by walking.
std::size_t Walk(const std::vector<std::wstring>& ids, const std::wstring& id, std::size_t start)
{
    for (std::size_t position = start; position < ids.size(); ++position)
        if (ids[position] == id)
            return position;
    return ItemIndex::kNotFound;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput input(data, size);
    ItemIndex index;
    std::vector<std::wstring> ids;
    // The items first: the index takes none once it was asked.
    const std::size_t count = input.Take<std::uint8_t>();
    for (std::size_t i = 0; i < count; ++i)
    {
        ids.push_back(std::wstring(1 + i % 3, input.Take<std::uint8_t>()));
        index.Append(ids.back());
    }
    index.ShrinkToFit();
    for (std::size_t step = 0; step < size && !ids.empty(); ++step)
    {
        const std::size_t position = input.Take<std::uint8_t>() % ids.size();
        const std::wstring id(1 + step % 3, input.Take<std::uint8_t>());
        if (step % 4 == 0)
        {
            ids[position] = id;
            index.Change(position, id);
        }
        const auto matches = [&](std::size_t candidate) { return ids[candidate] == id; };
        Require(index.Find(id, position, matches) == Walk(ids, id, position));
    }
    index.Clear();
    Require(index.Find(L"a", 0, [](std::size_t) { return true; }) == ItemIndex::kNotFound);
    return 0;
}
