// The options of contact commands, from the texts typed to what is asked of a contact. Portable.
#pragma once

#include "client/core/Contact.h"
#include "client/core/ContactFields.h"

#include <array>
#include <string>
#include <vector>

namespace CLI
{
class App;
}

namespace pim
{
struct ContactOptions
{
    Contact wish;
    // A file of contacts in the form that --json prints, in place of a wish.
    std::optional<std::wstring> file;
};

class ContactArguments
{
  public:
    // The object must outlive the parsing of the command.
    void AddTo(CLI::App& command);

    // What was given to the parsed command. Throws: UsageProblem, also where nothing was given.
    ContactOptions Read(const CLI::App& command) const;

  private:
    // The texts as typed, before they mean anything.
    std::array<std::string, kContactTextCount> m_texts;
    std::array<std::string, kContactDayCount> m_days;
    std::array<std::vector<std::string>, kContactListCount> m_lists;
    std::vector<std::string> m_phones;
    std::vector<std::string> m_addresses;
    std::string m_picture;
    std::string m_file;
};
} // namespace pim
