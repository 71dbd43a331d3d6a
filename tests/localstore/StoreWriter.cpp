#include "tests/localstore/StoreWriter.h"

#include "localstore/StoredProperties.h"
#include "localstore/StoreSchema.h"

#include <cstdio>

int RunStoreWriter(const std::wstring& path, int count)
{
    try
    {
        Database database = OpenStore(path);
        for (int i = 0; count == 0 || i < count; ++i)
        {
            Transaction transaction(database);
            database
                .Prepare("INSERT INTO book_entry (entry_id, container, object_type, created, "
                         "modified) SELECT ?1, id, 6, 0, 0 FROM book_container WHERE role = 1")
                .Bind(1, NewEntryId(6))
                .Run();
            const std::int64_t entry = database.LastInsertId();
            for (int property = 1; property <= kPropertiesPerEntry; ++property)
            {
                // Every fourth value is large enough to stand in a row of its own.
                const size_t units = property % 4 == 0 ? 5000 : 10;
                WriteProperty(database,
                              {OwnerKind::BookEntry, entry},
                              static_cast<std::uint16_t>(property),
                              {0x001F, std::wstring(units, L'x')});
            }
            transaction.Commit();
            std::printf("%lld\n", static_cast<long long>(entry));
            std::fflush(stdout);
        }
        return 0;
    }
    catch (const std::exception& error)
    {
        std::printf("failed: %s\n", error.what());
        std::fflush(stdout);
        return 1;
    }
}
