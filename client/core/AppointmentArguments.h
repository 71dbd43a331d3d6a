// The options of calendar commands, from the texts typed to what is asked of an appointment.
// Portable.
#pragma once

#include "client/core/ItemOptions.h"

#include <string>

namespace CLI
{
class App;
}

namespace pim
{
class AppointmentArguments
{
  public:
    // The object must outlive the parsing of the command.
    void AddTo(CLI::App& command);

    // What was given to the parsed command. Throws: UsageProblem.
    ItemOptions Read(const CLI::App& command) const;

  private:
    RepeatOptions ReadRepeat(const CLI::App& command) const;

    // The texts as typed, before they mean anything.
    std::string m_subject, m_place, m_description, m_start, m_end, m_reminder;
    std::string m_repeat, m_interval, m_days, m_nth, m_monthDay, m_month, m_count, m_until;
    bool m_allDay = false;
    bool m_isTimed = false;
};
} // namespace pim
